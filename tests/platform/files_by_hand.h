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

// What every file does, from an empty one on, until a seek to before its start is refused. Leaves
// "Jello world", two zeros and "!".
inline void WritesReadsAndSeeks(File& file) {
  EXPECT_TRUE(Write(file, "hello world"));
  std::int64_t position = 0;
  EXPECT_TRUE(file.SetFilePointer(6, FILE_BEGIN, &position));
  EXPECT_EQ(position, 6);
  EXPECT_EQ(ReadAll(file), "world");
  EXPECT_EQ(ReadAll(file), "");
  EXPECT_TRUE(file.SetFilePointer(-11, FILE_CURRENT, &position));
  EXPECT_EQ(position, 0);
  EXPECT_TRUE(Write(file, "J"));
  EXPECT_TRUE(file.SetFilePointer(2, FILE_END, &position));
  EXPECT_EQ(position, 13);
  EXPECT_EQ(ReadAll(file), "");
  EXPECT_TRUE(Write(file, "!"));
  EXPECT_FALSE(file.SetFilePointer(-1, FILE_BEGIN, &position));
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
