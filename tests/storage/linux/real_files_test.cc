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

#include "tests/platform/watched_files.h"
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
  EXPECT_EQ(Bytes(again.FindProfileFile("Race: 1/2")), PathOf("Race 12.idprof"));
  ASSERT_TRUE(again.Load(TextOf(PathOf("Race 12.idprof"))));
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
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  EXPECT_EQ(profile.pollInterval, 77u);
  EXPECT_EQ(Files(), std::vector<std::string>{"P.idprof"});
}

TEST_F(RealFilesTest, TheLongestNameIsTheLongestThatCanBeSaved) {
  ProfileFile longest;
  longest.profileName = TextOf(std::string(ProfileFile::kLongestName, 'n'));
  EXPECT_TRUE(longest.Save());
  longest.profileName.AppendChar('n');
  EXPECT_FALSE(longest.Save());
  EXPECT_EQ(Files().size(), 1u);
}

// ---- Two processes that save one profile

// A process of its own, stopped without a chance to tidy up at its end.
class OtherProcess {
 public:
  explicit OtherProcess(const std::function<void()>& run) : id(fork()) {
    if (id != 0) return;
    run();
    _exit(0);
  }
  ~OtherProcess() { End(); }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  void End() {
    if (id <= 0) return;
    kill(id, SIGKILL);
    waitpid(id, nullptr, 0);
    id = -1;
  }
  // True when it came to its own end.
  bool Wait() {
    int status = 0;
    const bool good = waitpid(id, &status, 0) == id && WIFEXITED(status);
    id = -1;
    return good;
  }

 private:
  pid_t id;
};

// One process tells another that it has come somewhere.
class Signal {
 public:
  Signal() { EXPECT_EQ(pipe(ends), 0); }
  ~Signal() {
    close(ends[0]);
    close(ends[1]);
  }
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;
  void Tell(char what = '.') const { EXPECT_EQ(write(ends[1], &what, 1), 1); }
  char Wait() const {
    char what = 0;
    EXPECT_EQ(read(ends[0], &what, 1), 1);
    return what;
  }

 private:
  int ends[2];
};

// Profiles of one name that differ in their Controls.
void Fill(ProfileFile* profile, std::uint32_t interval) {
  RandomProfile(interval).Fill(profile);
  profile->profileName = "P";
  profile->pollInterval = interval;
}

TEST_F(RealFilesTest, TwoProcessesThatSaveOneProfileLeaveItWholeAtEveryLook) {
  ProfileFile mine;
  Fill(&mine, 1);
  ASSERT_TRUE(mine.Save());
  const Signal saved;
  const auto saveOn = [&saved](std::uint32_t interval) {
    ProfileFile profile;
    Fill(&profile, interval);
    for (;;) {
      if (profile.Save()) saved.Tell();
    }
  };
  OtherProcess first([&saveOn] { saveOn(2); });
  OtherProcess second([&saveOn] { saveOn(3); });
  for (int look = 0; look < 300; ++look) {
    saved.Wait();
    ProfileFile found;
    ASSERT_TRUE(found.Load(TextOf(PathOf("P.idprof")))) << look;
    ASSERT_TRUE(found.pollInterval == 2 || found.pollInterval == 3) << look;
    ProfileFile whole;
    Fill(&whole, found.pollInterval);
    ExpectSameProfile(found, whole);
    ASSERT_FALSE(testing::Test::HasFailure()) << look;
  }
}

TEST_F(RealFilesTest, ASaveIsRefusedWhileAnotherProcessCopiesItsOwn) {
  ProfileFile mine;
  Fill(&mine, 1);
  ASSERT_TRUE(mine.Save());
  const Signal copying;
  const Signal goOn;
  const Signal result;
  OtherProcess other([&] {
    const WatchedFiles watched(program.Groups(),
                               [&](const std::string& operation, const std::string&) {
                                 if (operation != "copy") return;
                                 copying.Tell();
                                 goOn.Wait();
                               });
    ProfileFile theirs;
    Fill(&theirs, 2);
    result.Tell(theirs.Save() ? 'y' : 'n');
  });
  copying.Wait();
  EXPECT_FALSE(mine.Save());
  goOn.Tell();
  EXPECT_EQ(result.Wait(), 'y');
  EXPECT_TRUE(other.Wait());
  ProfileFile found;
  ASSERT_TRUE(found.Load(TextOf(PathOf("P.idprof"))));
  EXPECT_EQ(found.pollInterval, 2u);
  EXPECT_TRUE(mine.Save());
  EXPECT_EQ(Files(), std::vector<std::string>{"P.idprof"});
}

TEST_F(RealFilesTest, AProcessKilledInItsSaveKeepsNobodyOut) {
  for (const char* at : {"write", "copy", "delete"}) {
    const Signal there;
    const Signal never;
    OtherProcess other([&] {
      const WatchedFiles watched(program.Groups(),
                                 [&](const std::string& operation, const std::string&) {
                                   if (operation != at) return;
                                   there.Tell();
                                   never.Wait();
                                 });
      ProfileFile theirs;
      Fill(&theirs, 2);
      theirs.Save();
    });
    there.Wait();
    other.End();
    ProfileFile mine;
    Fill(&mine, 1);
    EXPECT_TRUE(mine.Save()) << at;
    ProfileFile found;
    EXPECT_TRUE(found.Load(TextOf(PathOf("P.idprof")))) << at;
    ExpectSameProfile(found, mine);
    EXPECT_EQ(Files(), std::vector<std::string>{"P.idprof"}) << at;
  }
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
  const ByteString path = TextOf(PathOf("P.idprof"));
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
    if (platform::files().GetLastError() != static_cast<std::uint32_t>(ENOSPC)) return 3;
    ProfileFile again;
    if (!again.Load(TextOf(PathOf("P.idprof"))) || Bytes(again.deviceName) != "old") return 4;
    std::filesystem::remove(PathOf("rest"));
    if (!profile.Save() || !again.Load(TextOf(PathOf("P.idprof")))) return 5;
    return Bytes(again.deviceName) == "new" ? 0 : 6;
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
    return platform::files().GetLastError() == static_cast<std::uint32_t>(EROFS) ? 0 : 4;
  });
  if (status == 77) GTEST_SKIP() << "nothing may be mounted here";
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace kelvaro
