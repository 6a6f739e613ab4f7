// Settings by which the program comes up without a word: no welcome, and no box about a profile
// whose device isn't there.
#pragma once

#include "tests/program/machine.h"

namespace kelvaro::tests {

// False when they can't be written.
bool PresetQuietSettings(const Home& home);

// The profile that was open when the program last ended.
std::string LastProfile(const Home& home);

}  // namespace kelvaro::tests
