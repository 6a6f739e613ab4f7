// An example of the manual: controls, what a player does, and what goes out. Such as
//
//     Trigger  B1
//     Keys     ab
//     Key hold time  20
//
//     What you do
//          100 ms  B1
//          300 ms  nothing
//
//     What goes out
//          100 ms  a down
//          120 ms  a up
//          120 ms  b down
//          300 ms  b up
//
// "Trigger" begins a control. The options of controls and of the mouse have the names that they
// have in the window. What a player does is all that is held from then on: names of triggers, and
// "Axis_X0 at 50 %".
#pragma once

#include <string>
#include <vector>

namespace kelvaro::manual {

struct Example {
  std::string profile;               // JSON, as kelvaroctl takes it
  std::string recording;             // JSON Lines
  std::vector<std::string> options;  // of `kelvaroctl run`
  std::vector<std::string> events;   // as `kelvaroctl run --simulate` prints them, without margin
};

// False, with the line that isn't understood in *error.
bool ReadExample(const std::string& text, Example* out, std::string* error);

// The members "buttonMask" and "triggerItems" of a Control in JSON, for a trigger by its name.
// False for what is no such name.
bool TriggerJson(const std::string& name, std::string* json);

}  // namespace kelvaro::manual
