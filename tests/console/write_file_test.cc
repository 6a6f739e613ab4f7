#include "console/write_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/files.h"

namespace kelvaro::console {
namespace {

TEST(WriteWholeFile, ReplacesAFileAndLeavesNothingBeside) {
  const tests::TemporaryFolder folder;
  const std::string path = tests::Put(folder.In("report.txt"), "before");
  std::string error;
  EXPECT_TRUE(WriteWholeFile(path, "after", &error)) << error;
  EXPECT_EQ(tests::Content(path), "after");
  EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

TEST(WriteWholeFile, SaysWhyItCant) {
  const tests::TemporaryFolder folder;
  std::string error;
  EXPECT_FALSE(WriteWholeFile(folder.In("none/report.txt"), "text", &error));
  EXPECT_EQ(error, "No such file or directory");
  EXPECT_FALSE(WriteWholeFile(folder.In(""), "text", &error));
  EXPECT_EQ(error, "Is a directory");
#ifndef _WIN32
  EXPECT_FALSE(WriteWholeFile("/dev/null", "text", &error));
  EXPECT_EQ(error, "File exists");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
#endif
}

}  // namespace
}  // namespace kelvaro::console
