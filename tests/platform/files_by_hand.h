// Files of a platform under a test's hands: short forms of what their tests do all the time.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/files.h"

namespace platform {

using Names = std::vector<std::string>;

inline std::unique_ptr<File> OpenToRead(Files& files, const std::string& path) {
  return files.CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

inline std::unique_ptr<File> Create(Files& files, const std::string& path) {
  return files.CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
}

inline bool Write(File& file, const std::string& bytes, std::uint32_t* written = nullptr) {
  std::uint32_t count = 0;
  const bool good = file.WriteFile(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &count);
  if (written) *written = count;
  return good;
}

inline std::string ReadAll(File& file) {
  char buffer[256];
  std::uint32_t read = 0;
  EXPECT_TRUE(file.ReadFile(buffer, sizeof buffer, &read));
  return std::string(buffer, read);
}

// In the order in which they are found.
inline Names Found(Files& files, const std::string& pattern) {
  Names names;
  FindData data;
  if (const std::unique_ptr<FileSearch> search = files.FindFirstFileA(pattern, &data)) {
    do {
      names.push_back(data.name);
    } while (search->FindNextFileA(&data));
  }
  return names;
}

}  // namespace platform
