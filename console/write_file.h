// A file of text that a command makes.
#pragma once

#include <string>

namespace kelvaro::console {

// Writes the file beside its place and renames it. False, with *error in words and the place as it
// was, where that can't be; what is there but is no file, such as a terminal, is left alone.
bool WriteWholeFile(const std::string& path, const std::string& text, std::string* error);

}  // namespace kelvaro::console
