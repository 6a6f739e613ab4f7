// kelvaroctl status, select, pause, resume, release-all: what runs is asked and steered.

#include <vector>

#include "console/commands.h"
#include "console/console_error.h"
#include "console/steering/calls_machine.h"
#include "console/steering/steered_instances.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

std::string Field(const SteeringMessage& message, const char* name) {
  const std::string* const value = message.Find(name);
  return value ? *value : std::string();
}

std::string Quoted(const std::string& name) { return "'" + TerminalText(name) + "'"; }

std::string StatusWords(const SteeringMessage& status) {
  const std::string profile = Field(status, "profile");
  const std::string device = Field(status, "device");
  std::string words = Field(status, "program") + ": ";
  words += profile.empty() ? "no profile" : "profile " + Quoted(profile);
  words += device.empty() ? ", no pad" : ", pad " + Quoted(device);
  if (!device.empty() && Field(status, "deviceAnswers") != "yes") words += " (gone)";
  if (Field(status, "paused") == "yes") words += ", paused";
  return words + ", mouse controls " + (Field(status, "mouseControls") == "yes" ? "on" : "off");
}

// Complains of those that didn't do it, and has `show` print the others.
template <typename Show>
int Finish(const std::vector<InstanceAnswer>& asked, Streams streams, Show show) {
  if (asked.empty()) return Complain(streams.err, kNobodyToAsk);
  int status = kDone;
  for (const InstanceAnswer& one : asked) {
    if (one.done) {
      show(one);
    } else {
      status = Complain(streams.err, std::to_string(one.process) + ": " + one.error);
    }
  }
  return status;
}

int Steer(const std::vector<InstanceAnswer>& asked, bool json, const std::string& words,
          Streams streams) {
  return Finish(asked, streams, [&](const InstanceAnswer& one) {
    if (json) {
      streams.out << "{\"process\":" << one.process << ",\"done\":true}" << std::endl;
    } else {
      streams.out << one.process << ": " << words << std::endl;
    }
  });
}

std::vector<InstanceAnswer> Ask(const SteerOptions& options, const char* kind) {
  SteeringMessage request;
  request.kind = kind;
  return AskInstances(options.instance, request);
}

int SteerBy(const SteerOptions& options, const char* kind, const char* words, Streams streams) {
  const CallsMachine machine;
  return Steer(Ask(options, kind), options.json, words, streams);
}

}  // namespace

int StatusCommand(const SteerOptions& options, Streams streams) {
  const CallsMachine machine;
  return Finish(Ask(options, "status"), streams, [&](const InstanceAnswer& one) {
    if (options.json) {
      streams.out << JsonLine(one.process, one.answer) << std::endl;
    } else {
      streams.out << one.process << ", " << StatusWords(one.answer) << std::endl;
    }
  });
}

int SelectCommand(const SteerOptions& options, Streams streams) {
  const CallsMachine machine;
  return Steer(SelectProfile(options.instance, options.profile), options.json,
               "opened " + Quoted(options.profile), streams);
}

int PauseCommand(const SteerOptions& options, Streams streams) {
  return SteerBy(options, "pause", "paused", streams);
}

int ResumeCommand(const SteerOptions& options, Streams streams) {
  return SteerBy(options, "resume", "goes on", streams);
}

int ReleaseAllCommand(const SteerOptions& options, Streams streams) {
  return SteerBy(options, "release-all", "has let go of all that it held", streams);
}

}  // namespace kelvaro::console
