// Whole small files.
#pragma once

#include <string>

namespace kelvaro::console {

// The content of a file, or of standard input for "-". False, with *error in the system's words,
// when it can't be read or is larger than any profile or recording has a reason to be (64 MiB).
bool ReadWholeFile(const std::string& path, std::string* content, std::string* error);

}  // namespace kelvaro::console
