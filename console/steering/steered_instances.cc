#include "console/steering/steered_instances.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "app/platform/byte_text.h"
#include "console/json_text.h"

namespace kelvaro::console {
namespace {

constexpr std::chrono::seconds kPatience{10};

// Members that are no text.
const std::set<std::string> kNumbers = {"t", "controlId", "count"};
const std::set<std::string> kFlags = {"deviceAnswers", "paused", "mouseControls", "on"};

InstanceAnswer Ask(std::uint32_t process, const SteeringMessage& request) {
  InstanceAnswer asked;
  asked.process = process;
  asked.conversation = platform::calls().Call(process);
  if (!asked.conversation || !asked.conversation->Send(request.Text())) {
    asked.conversation.reset();
    asked.error = "no running Kelvaro answers there";
  }
  return asked;
}

void Hear(InstanceAnswer* asked, std::chrono::steady_clock::time_point end) {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(end - std::chrono::steady_clock::now()).count();
  std::string text;
  switch (asked->conversation->Receive(&text,
                                       static_cast<std::uint32_t>(std::max<long long>(left, 0)))) {
    case platform::Conversation::Heard::Nothing:
      asked->error = "it hasn't answered within ten seconds; it may be sending long keys";
      return;
    case platform::Conversation::Heard::End:
      asked->error = "it ended before it answered";
      return;
    case platform::Conversation::Heard::Message:
      break;
  }
  const auto answer = ParseSteeringMessage(text, &asked->error);
  if (!answer) return;
  asked->answer = *answer;
  const std::string* const error = answer->kind == "error" ? answer->Find("text") : nullptr;
  if (error) asked->error = *error;
  asked->done = answer->kind != "error";
}

}  // namespace

std::vector<InstanceAnswer> AskInstances(std::optional<std::uint32_t> instance,
                                         const SteeringMessage& request) {
  const std::vector<std::uint32_t> processes =
      instance ? std::vector<std::uint32_t>{*instance} : platform::calls().Answering();
  // All are asked before any answer is waited for.
  std::vector<InstanceAnswer> asked;
  asked.reserve(processes.size());
  for (const std::uint32_t process : processes) asked.push_back(Ask(process, request));
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (InstanceAnswer& one : asked)
    if (one.conversation) Hear(&one, end);
  return asked;
}

std::vector<InstanceAnswer> SelectProfile(std::optional<std::uint32_t> instance,
                                          const std::string& name) {
  SteeringMessage request;
  request.kind = "select";
  request.Add("name", name);
  return AskInstances(instance, request);
}

std::string JsonLine(std::uint32_t process, const SteeringMessage& message) {
  std::string line = "{\"process\":" + std::to_string(process);
  for (const auto& [name, value] : message.fields) {
    line += ",\"" + name + "\":";
    const auto number = platform::ParseWholeNumber(value);
    if (kFlags.count(name) != 0) {
      line += value == "yes" ? "true" : "false";
    } else if (kNumbers.count(name) != 0 && number) {
      line += std::to_string(*number);
    } else {
      line += JsonText(value);
    }
  }
  return line + "}";
}

}  // namespace kelvaro::console
