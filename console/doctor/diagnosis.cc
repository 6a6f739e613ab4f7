#include "console/doctor/diagnosis.h"

#include <algorithm>

#include "console/help_text.h"
#include "console/json_text.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

using State = Remark::State;

constexpr char kNothing[] = "nothing to do";
constexpr char kModuleAdvice[] =
    "copy packaging/kelvaro-modules-load.conf to /etc/modules-load.d/kelvaro.conf";

Remark SessionRemark(const MachineFacts& facts) {
  const std::string login =
      facts.sessionType.empty() ? "" : " (the login says '" + facts.sessionType + "')";
  if (facts.hasWayland) {
    return {
        State::Good, "session",
        std::string("Wayland") + (facts.hasX ? ", with an X server for X programs" : "") + login,
        kNothing};
  }
  if (facts.hasX) return {State::Good, "session", "an X server" + login, kNothing};
  return {State::Note, "session", "no display" + login,
          "start the window from a desktop; kelvaroctl run works here, too"};
}

Remark NodeRemark(const MachineFacts& facts) {
  if (facts.uinputTrouble.empty()) {
    return {State::Good, "/dev/uinput", "this user may send keys by it", kNothing};
  }
  const bool otherWay = facts.xtestTrouble.empty();
  return {otherWay ? State::Note : State::Bad, "/dev/uinput", facts.uinputTrouble,
          facts.uinputAdvice};
}

Remark ModuleRemark(const MachineFacts& facts) {
  if (!facts.moduleLoaded) {
    return {State::Note, "module", "uinput is not loaded", "run \"modprobe uinput\" as root"};
  }
  if (!facts.moduleFile.empty()) {
    return {State::Good, "module", "uinput is loaded, and at each start by " + facts.moduleFile,
            kNothing};
  }
  // The rule makes the node before the module is there, and opening the node loads it.
  if (!facts.ruleFile.empty()) {
    return {State::Good, "module", "uinput is loaded", kNothing};
  }
  return {State::Note, "module", "uinput is loaded, but nothing says that it is at the next start",
          kModuleAdvice};
}

Remark RuleRemark(const MachineFacts& facts) {
  if (!facts.ruleFile.empty()) {
    return {State::Good, "udev rule", facts.ruleFile + " speaks of uinput", kNothing};
  }
  if (facts.uinputTrouble.empty()) {
    return {State::Good, "udev rule", "there is none for uinput, and this user needs none",
            kNothing};
  }
  return {State::Note, "udev rule", "there is none for uinput",
          "copy packaging/60-kelvaro.rules to /etc/udev/rules.d/"};
}

Remark OutputRemark(const MachineFacts& facts) {
  if (facts.uinputTrouble.empty()) {
    return {State::Good, "output", "uinput, a keyboard and a mouse of the machine: all programs",
            kNothing};
  }
  if (facts.xtestTrouble.empty()) {
    return {State::Note, "output",
            "XTest, as /dev/uinput can't be used: only programs of the X server get the keys",
            "see to /dev/uinput"};
  }
  return {State::Bad, "output", "none: /dev/uinput can't be used, and " + facts.xtestTrouble,
          "see to /dev/uinput"};
}

bool IsUsable(const PadFacts& pad) {
  return pad.whyClosed.empty() && (!pad.grabbed || pad.openInKelvaro);
}

Remark PadRemark(const PadFacts& pad, State unusable) {
  const std::string where = "'" + pad.name + "'" + (pad.node.empty() ? "" : " at " + pad.node);
  if (!pad.whyClosed.empty() && pad.node.empty()) {
    return {unusable, "pad", where + " can't be read: " + pad.whyClosed,
            "end other programs that use it, or pull it out and plug it in again"};
  }
  if (!pad.whyClosed.empty()) {
    return {unusable, "pad", where + " can't be read: " + pad.whyClosed,
            "log in at the machine itself; if that isn't enough, add a udev rule for it "
            "(packaging/README.md tells how)"};
  }
  if (pad.grabbed && pad.openInKelvaro) {
    return {
        State::Note, "pad", where + " is grabbed; open in " + pad.openIn,
        "nothing to do if Kelvaro is to have it alone, by 'Only For Kelvaro' or run --grab; end "
        "the other program otherwise"};
  }
  if (pad.grabbed) {
    return {unusable, "pad",
            where + " is grabbed" +
                (pad.openIn.empty() ? ", by a program of another user" : "; open in " + pad.openIn),
            "end that program, or choose the pad that it made in place of this one"};
  }
  std::string what = where + " can be read";
  if (!pad.openIn.empty()) what += "; also open in " + pad.openIn;
  if (!pad.mirror) return {State::Good, "pad", what, kNothing};
  return {State::Note, "pad", what + "; a program made it",
          "choose it only if the real pad does nothing"};
}

void AddPads(const std::vector<PadFacts>& pads, std::vector<Remark>* remarks) {
  if (pads.empty()) {
    remarks->push_back({State::Bad, "pad", "none is there",
                        "plug one in, or pair and switch on one that works by radio"});
  }
  const State unusable = std::any_of(pads.begin(), pads.end(), IsUsable) ? State::Note : State::Bad;
  for (const PadFacts& pad : pads) remarks->push_back(PadRemark(pad, unusable));
}

Remark IconRemark(const char* area, const char* advice) {
  if (area) return {State::Good, "notification area", area, kNothing};
  return {State::Note, "notification area", "none: the window is minimised in place of hiding",
          advice};
}

Remark IconRemark(const MachineFacts& facts) {
  const char* const area = facts.iconsOnBus ? "the desktop shows icons"
                           : facts.iconsOnX ? "there is one on the X server"
                                            : nullptr;
  return IconRemark(area, "turn on the desktop's tray, or its extension for app indicators");
}

Remark DirectInputRemark(const WindowsFacts& facts) {
  if (facts.directInputTrouble.empty())
    return {State::Good, "DirectInput", "version 8 is there", kNothing};
  return {State::Bad, "DirectInput", "pads can't be read: " + facts.directInputTrouble,
          "repair Windows: dinput8.dll belongs to it"};
}

Remark OutputRemark(const WindowsFacts& facts) {
  const std::string what = "Windows' own keyboard and mouse events, to the program in front";
  if (facts.isAdministrator) return {State::Good, "output", what, kNothing};
  return {State::Good, "output", what + ", but to none that an administrator started",
          "nothing to do, but for such a program: start Kelvaro as an administrator, too"};
}

Remark RealtimeRemark(const MachineFacts& facts) {
  if (facts.realtime) {
    return {State::Good, "real-time threads", "allowed: keys come on time on a busy machine",
            kNothing};
  }
  return {State::Note, "real-time threads",
          "not allowed: on a busy machine keys may come some milliseconds late",
          "install RealtimeKit (the package rtkit)"};
}

Remark FolderRemark(const FolderFacts& folder) {
  const std::string topic = "folder of " + folder.what;
  if (folder.path.empty()) {
    return {State::Note, topic, "there is none, and it can't be made",
            "set HOME and XDG_RUNTIME_DIR to folders that are yours"};
  }
  if (folder.writable) return {State::Good, topic, folder.path + " can be written", kNothing};
  return {State::Note, topic, folder.path + " can't be written, so nothing is kept there",
          "make it yours, or change its rights"};
}

Remark RunningRemark(const std::vector<std::uint32_t>& running) {
  if (running.empty()) return {State::Good, "running", "no window of Kelvaro", kNothing};
  std::string list;
  for (const std::uint32_t process : running) {
    list += (list.empty() ? "" : ", ") + std::to_string(process);
  }
  if (running.size() == 1) return {State::Good, "running", "one window, process " + list, kNothing};
  return {State::Note, "running", "several windows, processes " + list,
          "if keys come twice, end all but one: each sends the keys of its own profile"};
}

const char* Colour(State state) {
  switch (state) {
    case State::Good:
      return "\x1B[32m";
    case State::Note:
      return "\x1B[33m";
    default:
      return "\x1B[31m";
  }
}

}  // namespace

std::vector<Remark> Diagnose(const MachineFacts& facts) {
  std::vector<Remark> remarks = {SessionRemark(facts), NodeRemark(facts), ModuleRemark(facts),
                                 RuleRemark(facts), OutputRemark(facts)};
  AddPads(facts.pads, &remarks);
  remarks.push_back(IconRemark(facts));
  remarks.push_back(RealtimeRemark(facts));
  for (const FolderFacts& folder : facts.folders) remarks.push_back(FolderRemark(folder));
  remarks.push_back(RunningRemark(facts.running));
  return remarks;
}

std::vector<Remark> Diagnose(const WindowsFacts& facts) {
  std::vector<Remark> remarks = {DirectInputRemark(facts), OutputRemark(facts)};
  if (facts.directInputTrouble.empty()) AddPads(facts.pads, &remarks);
  remarks.push_back(IconRemark(facts.hasNotificationArea ? "the desktop has one" : nullptr,
                               "start the desktop, which is explorer.exe"));
  for (const FolderFacts& folder : facts.folders) remarks.push_back(FolderRemark(folder));
  remarks.push_back(RunningRemark(facts.running));
  return remarks;
}

bool KeepsFromWorking(const std::vector<Remark>& remarks) {
  return std::any_of(remarks.begin(), remarks.end(),
                     [](const Remark& remark) { return remark.state == State::Bad; });
}

const char* StateName(State state) {
  switch (state) {
    case State::Good:
      return "good";
    case State::Note:
      return "note";
    default:
      return "bad";
  }
}

std::string RemarkText(const Remark& remark, const Terminal& terminal) {
  constexpr std::size_t kIndent = 6;
  std::string mark = StateName(remark.state);
  mark.resize(kIndent, ' ');
  if (terminal.colours) mark = Colour(remark.state) + mark + "\x1B[0m";
  return mark + Wrapped(TerminalText(remark.topic + ": " + remark.what) + "; " +
                            TerminalText(remark.next) + ".",
                        terminal.columns, kIndent, kIndent);
}

std::string RemarkJson(const Remark& remark) {
  return "{\"topic\":" + JsonText(remark.topic) + ",\"state\":\"" + StateName(remark.state) +
         "\",\"what\":" + JsonText(remark.what) + ",\"next\":" + JsonText(remark.next) + "}";
}

}  // namespace kelvaro::console
