// Profiles as real files.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/storage/chunks.h"
#include "tests/storage/linux/program_elsewhere.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

class RealFilesTest : public testing::Test {
 protected:
  std::string PathOf(const std::string& fileName) { return program.Profiles() + "/" + fileName; }
  std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(program.Profiles())) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  mode_t Permissions(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  ProgramElsewhere program;
};

TEST_F(RealFilesTest, AProfileIsSavedBesideTheProgramAndComesBackEqual) {
  ProfileFile profile;
  RandomProfile(7).Fill(&profile);
  profile.profileName = "Race: 1/2";
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Files(), std::vector<std::string>{"Race 12.idprof"});
  ProfileFile again;
  EXPECT_EQ(Str(again.FindProfileFile("Race: 1/2")), PathOf("Race 12.idprof"));
  ASSERT_TRUE(again.Load(Bytes(PathOf("Race 12.idprof"))));
  ExpectSameProfile(profile, again);
  EXPECT_TRUE(again.DeleteProfileFile());
  EXPECT_TRUE(Files().empty());
}

TEST_F(RealFilesTest, ASaveKeepsThePermissionsButForTheReadOnlyBit) {
  ProfileFile profile;
  profile.profileName = "P";
  ASSERT_TRUE(profile.Save());
  ASSERT_EQ(chmod(PathOf("P.idprof").c_str(), 0640), 0);
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Permissions(PathOf("P.idprof")), 0640u);
  ASSERT_EQ(chmod(PathOf("P.idprof").c_str(), 0440), 0);
  profile.pollInterval = 77;
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Permissions(PathOf("P.idprof")), 0640u);
  ASSERT_TRUE(profile.Load(Bytes(PathOf("P.idprof"))));
  EXPECT_EQ(profile.pollInterval, 77u);
  EXPECT_EQ(Files(), std::vector<std::string>{"P.idprof"});
}

TEST_F(RealFilesTest, AReadOnlyFileIsNotDeleted) {
  ProfileFile profile;
  profile.profileName = "P";
  ASSERT_TRUE(profile.Save());
  ASSERT_EQ(chmod(PathOf("P.idprof").c_str(), 0444), 0);
  EXPECT_FALSE(profile.DeleteProfileFile());
  EXPECT_TRUE(std::filesystem::exists(PathOf("P.idprof")));
}

TEST_F(RealFilesTest, ATargetCutShortIsRestoredFromItsTemporary) {
  ProfileFile profile;
  RandomProfile(7).Fill(&profile);
  profile.profileName = "P";
  ASSERT_TRUE(profile.Save());
  std::filesystem::copy_file(PathOf("P.idprof"), PathOf("P.idprof.tmp"));
  std::filesystem::resize_file(PathOf("P.idprof"), 400);
  LinkedList<ByteString> names;
  ProfileFile again;
  EXPECT_TRUE(again.ListProfileNames(&names));
  EXPECT_EQ(names.count, 1);
  EXPECT_EQ(Files(), std::vector<std::string>{"P.idprof"});
  ASSERT_TRUE(again.Load(Bytes(PathOf("P.idprof"))));
  ExpectSameProfile(profile, again);
}

// The system calls of `run` in a process of its own, or -1 where none may be watched.
int SystemCalls(const std::function<void()>& run) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(1);
    raise(SIGSTOP);
    // Two calls that nothing else makes stand around what is counted.
    syscall(SYS_getppid);
    run();
    syscall(SYS_getppid);
    _exit(0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return -1;
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  int calls = 0;
  int marks = 0;
  while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
         waitpid(child, &status, 0) == child && !WIFEXITED(status)) {
    if (!WIFSTOPPED(status) || WSTOPSIG(status) != (SIGTRAP | 0x80)) continue;
    __ptrace_syscall_info info{};
    if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) <= 0) continue;
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
    if (info.entry.nr == SYS_getppid) {
      ++marks;
    } else if (marks == 1) {
      ++calls;
    }
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 && marks == 2 ? calls : -1;
}

TEST_F(RealFilesTest, ASmallProfileIsLoadedWithNoMoreThan12SystemCalls) {
  ProfileFile profile;
  RandomProfile(7).Fill(&profile);
  profile.profileName = "P";
  ASSERT_TRUE(profile.Save());
  const ByteString path = Bytes(PathOf("P.idprof"));
  const int calls = SystemCalls([&path] {
    ProfileFile loaded;
    if (!loaded.Load(path)) _exit(2);
  });
  if (calls < 0) GTEST_SKIP() << "no process may be watched here";
  EXPECT_GE(calls, 3) << "open, read and close";
  EXPECT_LE(calls, 12);
}

}  // namespace
}  // namespace kelvaro
