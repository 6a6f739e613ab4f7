// kelvaroctl follow: the profile of the window in front.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/file_machine.h"
#include "console/follow/follower.h"
#include "console/follow/front_watch.h"
#include "console/json_text.h"
#include "console/profile_source.h"
#include "console/read_file.h"
#include "console/steering/calls_machine.h"
#include "console/steering/steered_instances.h"
#include "console/stop_signals.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kMostRules = 1;  // MiB

bool ReadRules(const std::string& path, FollowRules* rules, std::ostream& err) {
  std::string text;
  std::string error;
  if (!ReadWholeFile(path, kMostRules, &text, &error)) {
    Complain(err, path + ": " + error);
    return false;
  }
  const FileMachine machine;
  const auto fault = [](const std::string& profile) {
    const bool stored = !Bytes(ProfileFile().FindProfileFile(TextOf(profile))).empty();
    return stored ? std::string() : NoStoredProfile(profile);
  };
  JsonFault place;
  if (rules->Read(text, fault, &place)) return true;
  Complain(err, place.Text(path), place.detail);
  return false;
}

// "program 'doom', class 'Doom', title 'Level 2'", of what is told.
std::string WindowText(const std::optional<FrontWindow>& window) {
  if (!window) return "no window";
  std::string text;
  const auto add = [&text](const char* name, const std::string& told) {
    if (!told.empty()) text += (text.empty() ? "" : ", ") + (name + (" '" + told + "'"));
  };
  add("program", window->program);
  add("class", window->kind);
  add("title", window->title);
  return text.empty() ? "a window that tells nothing" : text;
}

// What is printed of windows and profiles.
class FollowPrinter {
 public:
  FollowPrinter(const FollowRules& rules, const FollowOptions& options, Streams streams)
      : rules(rules), json(options.json), streams(streams) {}

  void Line(const char* event, const std::optional<FrontWindow>& window, std::size_t rule) {
    const std::string& profile = rules.ProfileOf(rule);
    if (json) {
      const auto text = [&](std::string FrontWindow::*member) {
        return window ? JsonText((*window).*member) : std::string("null");
      };
      streams.out << "{\"event\":\"" << event << "\",\"program\":" << text(&FrontWindow::program)
                  << ",\"class\":" << text(&FrontWindow::kind)
                  << ",\"title\":" << text(&FrontWindow::title) << ",\"rule\":" << rule
                  << ",\"profile\":" << JsonText(profile) << "}" << std::endl;
    } else {
      streams.out << TerminalText(WindowText(window) + ": " +
                                  (rule == 0 ? "the default" : "rule " + std::to_string(rule)) +
                                  ", profile '" + profile + "'")
                  << std::endl;
    }
    StopWithoutReader();
  }

  void OwnWindow() {
    if (!json) streams.out << "Kelvaro's own window: all stays as it is" << std::endl;
    StopWithoutReader();
  }

  void Waiting() {
    if (json) {
      streams.out << "{\"event\":\"waiting\"}" << std::endl;
    } else {
      streams.err << "No Kelvaro runs; it gets its profile as soon as one does." << std::endl;
    }
    StopWithoutReader();
  }

  void Failed(const std::string& error) { Complain(streams.err, error); }

 private:
  void StopWithoutReader() {
    if (!streams.out) StopSignals::Ask();
  }

  const FollowRules& rules;
  const bool json;
  const Streams streams;
};

// A line for each window.
FrontWatch::Listener DryRun(const FollowRules& rules, FollowPrinter* printer) {
  FrontWatch::Listener listener;
  listener.window = [&rules, printer](const std::optional<FrontWindow>& window) {
    if (window && IsOwnWindow(*window)) {
      printer->OwnWindow();
    } else {
      printer->Line("window", window, rules.RuleFor(window));
    }
  };
  listener.instances = [] {};
  return listener;
}

FrontWatch::Listener Follow(Follower* follower) {
  FrontWatch::Listener listener;
  listener.window = [follower](const std::optional<FrontWindow>& window) {
    follower->SeeWindow(window);
  };
  listener.instances = [follower] { follower->SeeInstances(); };
  return listener;
}

FollowReach RealReach() {
  return {[] { return platform::calls().Answering(); },
          [](std::uint32_t process, const std::string& profile, std::string* error) {
            for (const InstanceAnswer& answer : SelectProfile(process, profile)) {
              if (answer.conversation && !answer.done)
                *error = std::to_string(process) + ": " + answer.error;
              return answer.done;
            }
            return false;
          }};
}

}  // namespace

int FollowCommand(const FollowOptions& options, Streams streams) {
  FollowRules rules;
  if (!ReadRules(options.rules, &rules, streams.err)) return kBad;
  const CallsMachine machine;
  StopSignals signals;
  FollowPrinter printer(rules, options, streams);
  const FollowReach reach = RealReach();
  const FollowNews news{
      [&](const auto& window, std::size_t rule) { printer.Line("selected", window, rule); },
      [&] { printer.Waiting(); }, [&](const std::string& error) { printer.Failed(error); }};
  Follower follower(rules, reach, news);
  std::string ended;
  std::string error;
  {
    FrontWatch watch;  // ends first, as its thread uses the others
    FrontWatch::Listener listener = options.dryRun ? DryRun(rules, &printer) : Follow(&follower);
    listener.ended = [&ended](const std::string& reason) {
      ended = reason;
      StopSignals::Ask();
    };
    if (!watch.Open(&error)) return Complain(streams.err, error);
    streams.err << "Following the window in front, as " << watch.Teller()
                << " tells it; Ctrl-C ends it." << std::endl;
    if (!watch.Lack().empty()) streams.err << watch.Lack() << std::endl;
    watch.Begin(std::move(listener));
    signals.Wait({});
  }
  return ended.empty() ? kDone : Complain(streams.err, ended);
}

}  // namespace kelvaro::console
