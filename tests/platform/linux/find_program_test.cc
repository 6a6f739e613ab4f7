#include "app/platform/linux/find_program.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/host/files.h"

namespace platform {
namespace {

using namespace kelvaro::tests;

class FindProgramTest : public testing::Test, protected TemporaryFolder {
 protected:
  FindProgramTest() {
    for (const char* name : {"game", "bin/game", "bin/late"}) PutScript(folder + "/" + name, "");
    Put(folder + "/data", "");
    std::filesystem::create_directory(folder + "/dir");
  }

  const Variable path{"PATH", (folder + "/none:" + folder + ":" + folder + "/bin").c_str()};
};

TEST_F(FindProgramTest, FindsAProgramAsAShellDoes) {
  struct {
    std::string name;
    std::string found;
    int error;
  } const kRows[] = {
      {"game", folder + "/game", 0},
      {"late", folder + "/bin/late", 0},
      {"dir", "", ENOENT},
      {"data", "", EACCES},
      {"none-of-these", "", ENOENT},
      {"", "", ENOENT},
      {folder + "/game", folder + "/game", 0},
      {folder + "/data", "", EACCES},
      {folder + "/dir", "", EISDIR},
      {folder + "/nothing", "", ENOENT},
      {folder + "/game/x", "", ENOTDIR},
  };
  for (const auto& row : kRows) {
    int error = -1;
    EXPECT_EQ(FindProgram(row.name, &error), row.found) << row.name;
    EXPECT_EQ(error, row.error) << row.name;
  }
}

TEST_F(FindProgramTest, AnEmptyFolderIsTheCurrentOne) {
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(folder);
  int error = -1;
  path.Set(":/none");
  EXPECT_EQ(FindProgram("game", &error), folder + "/./game");
  std::filesystem::current_path(before);
}

TEST_F(FindProgramTest, WithoutFoldersTheSystemsAreLookedInto) {
  path.Set(nullptr);
  int error = -1;
  EXPECT_EQ(FindProgram("env", &error), "/usr/bin/env");
}

TEST_F(FindProgramTest, WhatIsNoFileIsNone) {
  ASSERT_EQ(mkfifo((folder + "/pipe").c_str(), 0755), 0);
  int error = -1;
  EXPECT_EQ(FindProgram("pipe", &error), "");
  EXPECT_EQ(error, EACCES);
}

}  // namespace
}  // namespace platform
