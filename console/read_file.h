// Whole small files.
#pragma once

#include <string>

namespace kelvaro::console {

// The content of a file, or of standard input for "-". False, with *error in the system's words,
// when it can't be read, or when it is larger than `mostMiB`.
bool ReadWholeFile(const std::string& path, std::size_t mostMiB, std::string* content,
                   std::string* error);

}  // namespace kelvaro::console
