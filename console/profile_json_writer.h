// Writes the JSON form of a profile, every member of it, as ReadProfile takes it.
#pragma once

#include <string>

#include "engine/profile.h"

namespace kelvaro::console {

// One object on one line, without a line feed. The Controls are those of the master list; an action
// that is none of keys is left out.
std::string ProfileJson(const Profile& profile);

}  // namespace kelvaro::console
