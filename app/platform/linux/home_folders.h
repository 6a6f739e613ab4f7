// Where programs keep what is a person's own, by the XDG base directory rules.
#pragma once

#include <filesystem>
#include <string>

namespace platform {

// $XDG_CONFIG_HOME where that is a full path, else .config in the home folder. Empty where a person
// has neither.
std::string ConfigFolder();

// The same of $XDG_DATA_HOME and .local/share.
std::string DataFolder();

// Makes what is missing of a full path, for its owner alone. True when it is there.
bool MakeFolders(const std::filesystem::path& folder);

}  // namespace platform
