#include "app/platform/linux/find_program.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

namespace platform {
namespace {

namespace fs = std::filesystem;

class FindProgramTest : public testing::Test {
 protected:
  FindProgramTest() {
    std::string pattern = "/tmp/find-program-test-XXXXXX";
    folder = mkdtemp(pattern.data());
    fs::create_directories(folder + "/bin");
    fs::create_directory(folder + "/dir");
    Put("game", fs::perms(0755));
    Put("data", fs::perms(0644));
    Put("bin/game", fs::perms(0755));
    Put("bin/late", fs::perms(0755));
    const char* const path = getenv("PATH");
    before = path ? path : "";
    setenv("PATH", (folder + "/none:" + folder + ":" + folder + "/bin").c_str(), 1);
  }
  ~FindProgramTest() override {
    setenv("PATH", before.c_str(), 1);
    fs::remove_all(folder);
  }
  void Put(const std::string& name, fs::perms mode) {
    std::ofstream(folder + "/" + name) << "#!/bin/sh\n";
    fs::permissions(folder + "/" + name, mode);
  }

  std::string folder;
  std::string before;
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

}  // namespace
}  // namespace platform
