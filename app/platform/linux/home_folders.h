// Where programs keep a person's settings, by the XDG base directory rules.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

// $XDG_CONFIG_HOME where that is a full path, else .config in the home folder. Empty where a person
// has neither.
std::string ConfigFolder();

// Makes what is missing of a full path, for its owner alone. True when it is there.
bool MakeFolders(const std::filesystem::path& folder);

}  // namespace platform
