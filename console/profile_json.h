// The JSON form of a profile, with the members that engine/members.h lists.
#pragma once

#include <cstdint>
#include <string>

#include "console/json_reader.h"
#include "engine/profile.h"

namespace kelvaro::console {

// Far more than a pad has use for.
constexpr std::uint32_t kMostControls = 10'000;

// Fills *profile, a fresh one, from `text`. A member left out has its default; a Control without
// controlId takes the next free number. False, with *fault set, for a text that isn't a profile;
// *profile is then of no use.
bool ReadProfile(const std::string& text, Profile* profile, JsonFault* fault);

// Every member as ReadProfile takes it: one object on one line, without a line feed. The Controls
// are those of the master list; an action of another kind than keys is left out.
std::string ProfileJson(const Profile& profile);

}  // namespace kelvaro::console
