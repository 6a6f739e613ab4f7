// Where a command puts a profile that it has made.
#pragma once

#include <string>

#include "storage/profile_file.h"

namespace kelvaro::console {

// Under a FileMachine. The file appears whole or not at all: false, with *error in words that name
// what and where, when it can't be made.
bool WriteProfile(ProfileFile& profile, const std::string& path, std::string* error);

}  // namespace kelvaro::console
