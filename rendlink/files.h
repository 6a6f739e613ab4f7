// Whole files through the seam.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/files.h"

namespace kelvaro::rendlink {

bool IsFile(const std::string& path);
bool IsFolder(const std::string& path);

// False for what can't be read, or is longer than `most` bytes.
bool ReadFile(const std::string& path, std::uint32_t most, std::string* bytes);

// False with the system's words for it in *error, and what stood there as it was: a power cut
// leaves that or the new bytes, too.
bool WriteFile(const std::string& path, const std::string& bytes, std::string* error);

// The system's words for that number; of the last operation of files, unless another is told.
std::string ErrorText(std::uint32_t error = platform::files().GetLastError());

// "supertux2" of "/usr/games/supertux2.sh": what a launcher goes by.
std::string Stem(const std::string& path);

}  // namespace kelvaro::rendlink
