// Where a command puts a profile that it has made.
#pragma once

#include <string>

#include "storage/profile_file.h"

namespace kelvaro::console {

// Both under a FileMachine. The file appears whole or not at all: false, with *error in words that
// name what and where, when it can't be made.
bool WriteProfile(ProfileFile& profile, const std::string& path, std::string* error);
// Among the stored ones, under its name, as *path. Takes no name that one of them has, and no file
// that is there.
bool StoreProfile(ProfileFile& profile, std::string* path, std::string* error);

}  // namespace kelvaro::console
