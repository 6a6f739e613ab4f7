#include "app/platform/linux/find_program.h"

#include <errno.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace platform
