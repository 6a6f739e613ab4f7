// Profiles as real files.
#include <errno.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
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

// A file system of its own for the folder of profiles, which this process and its children alone
// see. False where no such thing is allowed.
bool MountSmallDisk(const std::string& folder) {
  std::filesystem::create_directory(folder);
  return unshare(CLONE_NEWNS) == 0 &&
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
}

// The exit status of `work`, which runs in a process of its own on such a disk; 77 for none.
int OnSmallDisk(const std::string& folder, const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(MountSmallDisk(folder) ? work() : 77);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TEST_F(RealFilesTest, OnAFullDiskASaveFailsForThatReasonAndLeavesTheOldProfile) {
  const int status = OnSmallDisk(program.Profiles(), [this] {
    ProfileFile profile;
    profile.profileName = "P";
    profile.deviceName = "old";
    if (!profile.Save() || !ProfileFile::CanSave()) return 1;
    std::ofstream(PathOf("rest")) << std::string(100'000, 'x');
    profile.deviceName = "new";
    if (profile.Save()) return 2;
    if (platform::GetLastError() != static_cast<std::uint32_t>(ENOSPC)) return 3;
    ProfileFile again;
    if (!again.Load(Bytes(PathOf("P.idprof"))) || Str(again.deviceName) != "old") return 4;
    std::filesystem::remove(PathOf("rest"));
    if (!profile.Save() || !again.Load(Bytes(PathOf("P.idprof")))) return 5;
    return Str(again.deviceName) == "new" ? 0 : 6;
  });
  if (status == 77) GTEST_SKIP() << "nothing may be mounted here";
  EXPECT_EQ(status, 0);
}

TEST_F(RealFilesTest, WhereTheDiskIsReadOnlyASaveIsKnownToFail) {
  const int status = OnSmallDisk(program.Profiles(), [this] {
    if (!ProfileFile::CanSave()) return 1;
    if (mount("none", program.Profiles().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
      return 77;
    if (ProfileFile::CanSave()) return 2;
    ProfileFile profile;
    profile.profileName = "P";
    if (profile.Save()) return 3;
    return platform::GetLastError() == static_cast<std::uint32_t>(EROFS) ? 0 : 4;
  });
  if (status == 77) GTEST_SKIP() << "nothing may be mounted here";
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace kelvaro
