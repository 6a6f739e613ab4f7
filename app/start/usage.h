// What the program's own command line can have, for its help, its manual page and the shells.
#pragma once

#include <string>
#include <vector>

namespace kelvaro {

struct Argument {
  std::string word;   // as it is typed: "profile=", or the name of what stands in its place
  std::string value;  // the name of what follows it; empty for nothing
  std::string about;
};

const std::vector<Argument>& Arguments();

constexpr char kAboutWindow[] =
    "Shows the window of Kelvaro, which turns a game pad or joystick into keys and mouse.";
constexpr char kUsageNotes[] = "Without a display \"kelvaroctl run\" plays a profile.";

// What "--help" prints.
std::string UsageText();

}  // namespace kelvaro
