#include "app/platform/linux/device_use.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

namespace platform {
namespace {

class ProgramsWithOpenTest : public ::testing::Test {
 protected:
  ProgramsWithOpenTest() : file(mkstemp(path)) { EXPECT_GE(file, 0); }
  ~ProgramsWithOpenTest() override {
    close(file);
    unlink(path);
  }

  // Another process, called `name`, that has the file open if `opens`; ended with EndOf.
  pid_t Start(const char* name, bool opens) {
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
      prctl(PR_SET_NAME, name);
      if (!opens) close(file);
      if (write(ready[1], "", 1) != 1) _exit(1);
      for (;;) pause();
    }
    char byte;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    close(ready[0]);
    close(ready[1]);
    return child;
  }
  static void EndOf(pid_t child) {
    kill(child, SIGKILL);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
  }

  char path[32] = "/tmp/device-use-XXXXXX";
  const int file;
};

TEST_F(ProgramsWithOpenTest, AreThoseOfOthersWithTheirNames) {
  const pid_t reader = Start("a reader", true);
  const pid_t bystander = Start("a bystander", false);
  const std::vector<OtherProgram> programs = ProgramsWithOpen(path);
  EndOf(bystander);
  EndOf(reader);
  ASSERT_EQ(programs.size(), 1u);
  EXPECT_EQ(programs[0].process, static_cast<std::uint32_t>(reader));
  EXPECT_EQ(programs[0].name, "a reader");
}

TEST_F(ProgramsWithOpenTest, AreNoneWhereOnlyThisOneHasIt) {
  EXPECT_EQ(ProgramsWithOpen(path).size(), 0u);
}

TEST(IsGrabbed, IsFalseOfWhatCantBeOpened) { EXPECT_FALSE(IsGrabbed("/dev/input/no such node")); }

}  // namespace
}  // namespace platform
