// What keeps Kelvaro from working on a machine, or may surprise a person there, and what to do
// about it: rules over plain facts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "console/terminal.h"

namespace kelvaro::console {

// One pad of the machine.
struct PadFacts {
  std::string name;
  std::string node;            // "/dev/input/event3"
  std::string whyClosed;       // the system's reason; empty where it can be read
  bool mirror = false;         // a program made it
  bool grabbed = false;        // by another program
  bool openInKelvaro = false;  // another instance
  std::string openIn;          // other programs, "game (4711)"; empty for none that is known
};

struct FolderFacts {
  std::string what;  // "profiles"
  std::string path;
  bool writable = false;  // or can be made
};

// Of a machine with Linux.
struct MachineFacts {
  std::string sessionType;  // as the login says: "wayland", "x11", "tty"; may be empty
  bool hasWayland = false;  // a display is named
  bool hasX = false;
  std::string uinputTrouble;  // empty where /dev/uinput can be opened
  std::string uinputAdvice;   // what to do about it
  bool moduleLoaded = false;
  std::string moduleFile;    // that has it loaded at each start; empty for none
  std::string ruleFile;      // of udev's that speaks of uinput; empty for none
  std::string xtestTrouble;  // empty where XTest can be used
  std::vector<PadFacts> pads;
  bool iconsOnBus = false;
  bool iconsOnX = false;
  bool realtime = false;  // a thread may ask for it, by RealtimeKit or by the system's limit
  std::vector<FolderFacts> folders;
  std::vector<std::uint32_t> running;  // windows of Kelvaro, by their processes
};

// Of one with Windows.
struct WindowsFacts {
  std::string directInputTrouble;  // empty where DirectInput 8 is there
  std::vector<PadFacts> pads;      // without nodes: DirectInput names none
  bool hasNotificationArea = false;
  bool isAdministrator = false;
  std::vector<FolderFacts> folders;
  std::vector<std::uint32_t> running;
};

// One line of the answer.
struct Remark {
  enum class State {
    Good,  // as it should be
    Note,  // works, but not for all or not as well
    Bad,   // keeps Kelvaro from working
  };
  State state = State::Good;
  std::string topic;
  std::string what;
  std::string next;  // what to do; "nothing to do" where all is well
};

std::vector<Remark> Diagnose(const MachineFacts& facts);
std::vector<Remark> Diagnose(const WindowsFacts& facts);

// Whether one of them is bad.
bool KeepsFromWorking(const std::vector<Remark>& remarks);

// "good", "note", "bad"
const char* StateName(Remark::State state);

// A paragraph for a terminal, ended by a line feed.
std::string RemarkText(const Remark& remark, const Terminal& terminal);
// {"topic":"output","state":"good","what":"…","next":"…"}
std::string RemarkJson(const Remark& remark);

}  // namespace kelvaro::console
