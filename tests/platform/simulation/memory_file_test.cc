#include "app/platform/simulation/memory_file.h"

#include <gtest/gtest.h>

namespace platform::simulation {
namespace {

TEST(MemoryFile, ReadsUpToItsEnd) {
  MemoryFile file("abcde");
  char buffer[8] = {};
  std::uint32_t read = 99;
  EXPECT_TRUE(file.ReadFile(buffer, 3, &read));
  EXPECT_EQ(std::string(buffer, read), "abc");
  EXPECT_TRUE(file.ReadFile(buffer, 8, &read));
  EXPECT_EQ(std::string(buffer, read), "de");
  EXPECT_TRUE(file.ReadFile(buffer, 8, &read));
  EXPECT_EQ(read, 0u);
}

TEST(MemoryFile, WritesAtItsPosition) {
  MemoryFile file("abcde");
  std::uint32_t written = 99;
  std::int64_t position = 99;
  EXPECT_TRUE(file.SetFilePointer(3, FILE_BEGIN, &position));
  EXPECT_EQ(position, 3);
  EXPECT_TRUE(file.WriteFile("XYZ", 3, &written));
  EXPECT_EQ(written, 3u);
  EXPECT_EQ(file.content, "abcXYZ");
  EXPECT_TRUE(file.WriteFile(nullptr, 0, &written));
  EXPECT_EQ(written, 0u);
}

TEST(MemoryFile, MovesFromStartPlaceAndEnd) {
  MemoryFile file("abcde");
  std::int64_t position = 99;
  EXPECT_TRUE(file.SetFilePointer(-1, FILE_END, &position));
  EXPECT_EQ(position, 4);
  EXPECT_TRUE(file.SetFilePointer(-2, FILE_CURRENT, &position));
  EXPECT_EQ(position, 2);
  EXPECT_FALSE(file.SetFilePointer(-3, FILE_CURRENT, &position));
  EXPECT_FALSE(file.SetFilePointer(0, 3, &position));
  EXPECT_EQ(position, 2);
  EXPECT_TRUE(file.SetFilePointer(1, FILE_CURRENT, nullptr));
  EXPECT_EQ(file.position, 3u);
  EXPECT_TRUE(file.SetFilePointer(INT64_MAX, FILE_BEGIN, nullptr));
  EXPECT_FALSE(file.SetFilePointer(INT64_MAX, FILE_CURRENT, nullptr));
}

TEST(MemoryFile, AGapReadsAsZeros) {
  MemoryFile file("a");
  std::uint32_t count = 0;
  file.SetFilePointer(3, FILE_BEGIN, nullptr);
  char buffer[4] = {};
  EXPECT_TRUE(file.ReadFile(buffer, 4, &count));
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(file.WriteFile("b", 1, &count));
  EXPECT_EQ(file.content, std::string("a\0\0b", 4));
}

TEST(MemoryFile, IsNotWrittenFarOut) {
  MemoryFile file;
  std::uint32_t written = 99;
  EXPECT_TRUE(file.SetFilePointer(INT64_MAX, FILE_BEGIN, nullptr));
  EXPECT_FALSE(file.WriteFile("a", 1, &written));
  EXPECT_EQ(written, 0u);
  EXPECT_TRUE(file.content.empty());
}

TEST(MemoryFile, NothingWorksBehindItsClosing) {
  MemoryFile file("abc");
  EXPECT_TRUE(file.CloseHandle());
  EXPECT_FALSE(file.CloseHandle());
  char buffer[4];
  std::uint32_t count = 99;
  EXPECT_FALSE(file.ReadFile(buffer, 1, &count));
  EXPECT_FALSE(file.WriteFile("x", 1, &count));
  EXPECT_EQ(file.content, "abc");
}

TEST(MemoryFile, FailsWhenToldTo) {
  MemoryFile file("abc");
  file.failing = true;
  char buffer[4];
  std::uint32_t count = 99;
  EXPECT_FALSE(file.ReadFile(buffer, 1, &count));
  EXPECT_EQ(count, 0u);
  EXPECT_FALSE(file.WriteFile("x", 1, &count));
  EXPECT_FALSE(file.SetFilePointer(0, FILE_BEGIN, nullptr));
  EXPECT_EQ(file.content, "abc");
}

}  // namespace
}  // namespace platform::simulation
