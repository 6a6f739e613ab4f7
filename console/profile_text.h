// A profile as a person reads it.
#pragma once

#include <string>

#include "engine/profile.h"

namespace kelvaro::console {

// "Control 7 'Jump'", on one line.
std::string ControlName(const Control& control);

// What its actions send, such as "<Ctrl>c then x (all held)", on one line; "-" for nothing.
std::string KeysText(const Control& control);

// Some lines on the device, the mouse and one on each Control, each ended by a line feed.
std::string ProfileText(const Profile& profile);

}  // namespace kelvaro::console
