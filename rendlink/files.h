// Whole files through the seam.
#pragma once

#include <cstdint>
#include <string>

namespace kelvaro::rendlink {

bool IsFile(const std::string& path);
bool IsFolder(const std::string& path);

// False for what can't be read, or is longer than `most` bytes.
bool ReadFile(const std::string& path, std::uint32_t most, std::string* bytes);

// False with the system's words for it in *error.
bool WriteFile(const std::string& path, const std::string& bytes, std::string* error);

}  // namespace kelvaro::rendlink
