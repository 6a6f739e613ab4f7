#include "app/platform/linux/linux_files.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/platform/linux/linux_platform.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/cut_off_thread.h"
#include "tests/platform/machine/files_fixture.h"

namespace {

// What the program asks the system to make lasting, in order: "fsync file", "fsync folder",
// "rename". The call with the number failAt fails.
struct Watch {
  std::vector<std::string> calls;
  std::size_t failAt = 0;
};

Watch* watch = nullptr;

// Called once, when a file has been opened and is about to be claimed.
std::function<void()> beforeClaim;

bool Fails(const char* call) {
  if (!watch) return false;
  watch->calls.emplace_back(call);
  if (watch->calls.size() != watch->failAt) return false;
  errno = EIO;
  return true;
}

}  // namespace

extern "C" {
int __real_fsync(int fd);
int __real_rename(const char* from, const char* to);
int __real_fcntl(int fd, int command, ...);

int __wrap_fsync(int fd) {
  struct stat status;
  const bool isFolder = fstat(fd, &status) == 0 && S_ISDIR(status.st_mode);
  return Fails(isFolder ? "fsync folder" : "fsync file") ? -1 : __real_fsync(fd);
}

int __wrap_rename(const char* from, const char* to) {
  return Fails("rename") ? -1 : __real_rename(from, to);
}

int __wrap_fcntl(int fd, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  if (command == F_OFD_SETLK && beforeClaim) std::exchange(beforeClaim, nullptr)();
  return __real_fcntl(fd, command, argument);
}
}

namespace platform {
namespace {

using kelvaro::tests::Fork;
using kelvaro::tests::OpenFiles;
using kelvaro::tests::Refusal;
using kelvaro::tests::StatusOf;
using kelvaro::tests::WhereRefused;

class Watching {
 public:
  explicit Watching(std::size_t failAt = 0) : mine{{}, failAt} { watch = &mine; }
  ~Watching() { watch = nullptr; }
  Watching(const Watching&) = delete;
  Watching& operator=(const Watching&) = delete;
  const Names& Calls() const { return mine.calls; }

 private:
  Watch mine;
};

class LinuxFilesTest : public FilesTest {
 protected:
  void Link(const std::string& to, const std::string& name) const {
    ASSERT_EQ(symlink(to.c_str(), In(name).c_str()), 0);
  }

  mode_t Mode(const std::string& name) const {
    struct stat status;
    return lstat(In(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
  }
};

// Two files, and nothing else in the end.
class LinuxCopyTest : public LinuxFilesTest {
 protected:
  LinuxCopyTest() {
    Put("a", "new");
    Put("b", "old");
  }
  ~LinuxCopyTest() override { EXPECT_EQ(List(), (Names{"a", "b"})); }
};

// They are in the thread's hands: no accessor stands before them.
TEST_F(LinuxFilesTest, AnOpenFileAndASearchStopAThreadThatWasCutOff) {
  Put("a", "text");
  static File* const file = OpenToRead(In("a")).release();
  static FindData data;
  static FileSearch* const all = files.FindFirstFileA(In("*"), &data).release();
  static FileSearch* const one = files.FindFirstFileA(In("a"), &data).release();
  static char buffer[4];
  static std::uint32_t size = 0;
  EXPECT_EQ(ComeBackThoughCutOff({
                {"ReadFile", [] { file->ReadFile(buffer, sizeof buffer, &size); }},
                {"WriteFile", [] { file->WriteFile(buffer, sizeof buffer, &size); }},
                {"SetFilePointer", [] { file->SetFilePointer(0, FILE_BEGIN, nullptr); }},
                {"CloseHandle", [] { file->CloseHandle(); }},
                {"FindNextFileA", [] { all->FindNextFileA(&data); }},
                {"FindNextFileA of one", [] { one->FindNextFileA(&data); }},
            }),
            Names());
}

TEST_F(LinuxFilesTest, CreatingEmptiesWhatIsThereAndKeepsItsPermissions) {
  Put("a", "long before", 0600);
  EXPECT_TRUE(Create(In("a")));
  EXPECT_EQ(Bytes("a"), "");
  EXPECT_EQ(Mode("a"), 0600u);
}

TEST_F(LinuxFilesTest, ANewFileHasTheUsersUsualPermissions) {
  const mode_t old = umask(027);
  EXPECT_TRUE(Create(In("a")));
  umask(old);
  EXPECT_EQ(Mode("a"), 0640u);
}

TEST_F(LinuxFilesTest, WhatIsOpenIsNotHandedToOtherPrograms) {
  Put("a", "1");
  const std::unique_ptr<File> reading = OpenToRead(In("a"));
  const std::unique_ptr<File> writing = Create(In("b"));
  FindData data;
  const std::unique_ptr<FileSearch> search = files.FindFirstFileA(In("*"), &data);
  int open = 0;
  for (const auto& [number, path] : OpenFiles(getpid())) {
    if (!path.starts_with(folder)) continue;
    ++open;
    EXPECT_EQ(fcntl(number, F_GETFD), FD_CLOEXEC);
  }
  EXPECT_EQ(open, 5);  // a, b and the claim to it, the folder that b lies in, and the search's
}

TEST_F(LinuxFilesTest, OpeningRefusesWhatIsNoPlainFile) {
  EXPECT_FALSE(OpenToRead(In("none")));
  EXPECT_EQ(Error(), ENOENT);
  EXPECT_FALSE(OpenToRead(folder));
  EXPECT_EQ(Error(), EISDIR);
  EXPECT_FALSE(Create(folder));
  EXPECT_EQ(Error(), EISDIR);
  EXPECT_FALSE(OpenToRead(""));
  EXPECT_FALSE(OpenToRead("/dev/null"));
  EXPECT_FALSE(Create(In("none/a")));
}

TEST_F(LinuxFilesTest, APipeIsRefusedWithoutWaitingForItsOtherEnd) {
  ASSERT_EQ(mkfifo(In("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(OpenToRead(In("pipe")));
  EXPECT_FALSE(Create(In("pipe")));
  EXPECT_FALSE(files.CreateFileA(In("pipe"), GENERIC_WRITE, 0, OPEN_EXISTING));
  Put("a", "1");
  EXPECT_FALSE(Copy("pipe", "a"));
  EXPECT_FALSE(Copy("a", "pipe"));
  EXPECT_EQ(List(), (Names{"a", "pipe"}));
}

TEST_F(LinuxFilesTest, AFolderIsReadOnlyForAUserWhoMayNotWriteIt) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root, who can be anybody";
  chmod(folder.c_str(), 0755);
  EXPECT_EQ(files.GetFileAttributesA(folder), FILE_ATTRIBUTE_DIRECTORY);
  const pid_t child = Fork([this] {
    constexpr id_t kNobody = 65534;
    if (setegid(kNobody) != 0 || seteuid(kNobody) != 0) return 255;
    return static_cast<int>(files.GetFileAttributesA(folder));
  });
  EXPECT_EQ(static_cast<std::uint32_t>(StatusOf(child)),
            FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY);
}

TEST_F(LinuxFilesTest, ReadOnlyIsTheOwnersWritePermission) {
  Put("a", "1", 0644);
  EXPECT_TRUE(files.SetFileAttributesA(In("a"), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(Mode("a"), 0444u);
  EXPECT_TRUE(files.SetFileAttributesA(In("a"), FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(Mode("a"), 0644u);
  Put("group", "1", 0464);
  EXPECT_EQ(files.GetFileAttributesA(In("group")), FILE_ATTRIBUTE_READONLY);
}

TEST_F(LinuxFilesTest, DeletingTakesFilesAndLinksButNoFolders) {
  Put("a", "1");
  Link("nowhere", "dangling");
  Link("a", "link");
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  EXPECT_TRUE(files.DeleteFileA(In("link")));
  EXPECT_EQ(Bytes("a"), "1");
  EXPECT_TRUE(files.DeleteFileA(In("dangling")));
  EXPECT_TRUE(files.DeleteFileA(In("a")));
  EXPECT_FALSE(files.DeleteFileA(In("a")));
  EXPECT_EQ(Error(), ENOENT);
  EXPECT_FALSE(files.DeleteFileA(In("sub")));
  EXPECT_EQ(List(), Names{"sub"});
}

TEST_F(LinuxFilesTest, AFileDeletedBeforeItCouldBeClaimedIsMadeAnew) {
  Put("a", "old");
  beforeClaim = [this] { unlink(In("a").c_str()); };
  std::unique_ptr<File> file = Create(In("a"));
  ASSERT_TRUE(file);
  EXPECT_TRUE(Write(*file, "new"));
  EXPECT_EQ(Bytes("a"), "new");
  beforeClaim = [this] { Put("b", "another"), rename(In("b").c_str(), In("a").c_str()); };
  file = nullptr;
  file = Create(In("a"));
  ASSERT_TRUE(file);
  EXPECT_FALSE(beforeClaim) << "called";
  EXPECT_TRUE(Write(*file, "newer"));
  EXPECT_EQ(Bytes("a"), "newer");
}

TEST_F(LinuxFilesTest, AFileMadeAnewByAnotherIsNotDeleted) {
  Put("a", "old");
  std::unique_ptr<File> other;
  beforeClaim = [&] {
    unlink(In("a").c_str());
    other = Create(In("a"));
  };
  EXPECT_FALSE(files.DeleteFileA(In("a")));
  EXPECT_TRUE(other);
  EXPECT_EQ(List(), Names{"a"});
}

TEST_F(LinuxFilesTest, ClosingAWrittenFileFlushesItAndItsFolder) {
  const std::unique_ptr<File> file = Create(In("a"));
  Write(*file, "1");
  Watching watching;
  EXPECT_TRUE(file->CloseHandle());
  EXPECT_EQ(watching.Calls(), (Names{"fsync file", "fsync folder"}));
}

TEST_F(LinuxFilesTest, ClosingAReadFileFlushesNothing) {
  Put("a", "1");
  const std::unique_ptr<File> file = OpenToRead(In("a"));
  Watching watching;
  EXPECT_TRUE(file->CloseHandle());
  EXPECT_EQ(watching.Calls(), Names());
}

TEST_F(LinuxFilesTest, AFlushThatFailsMakesClosingFail) {
  for (const std::size_t failAt : {1, 2}) {
    const std::unique_ptr<File> file = Create(In("a"));
    Watching watching(failAt);
    EXPECT_FALSE(file->CloseHandle());
    EXPECT_EQ(Error(), EIO);
    EXPECT_FALSE(file->CloseHandle());
    EXPECT_EQ(Error(), EBADF);
  }
}

TEST_F(LinuxFilesTest, ANewFolderIsFlushedIntoItsParent) {
  Watching watching;
  EXPECT_TRUE(files.CreateDirectoryA(In("sub/")));
  EXPECT_EQ(watching.Calls(), Names{"fsync folder"});
  EXPECT_FALSE(files.CreateDirectoryA(In("sub")));
  EXPECT_EQ(Error(), EEXIST);
  EXPECT_FALSE(files.CreateDirectoryA(In("none/sub")));
}

TEST_F(LinuxFilesTest, ADeletionIsFlushedIntoItsFolder) {
  Put("a", "1");
  const Watching watching;
  EXPECT_TRUE(files.DeleteFileA(In("a")));
  EXPECT_EQ(watching.Calls(), Names{"fsync folder"});
}

TEST_F(LinuxFilesTest, ADeletionThatIsNotLastingYetCountsAsFailed) {
  Put("a", "1");
  const Watching watching(1);
  EXPECT_FALSE(files.DeleteFileA(In("a")));
  EXPECT_FALSE(std::filesystem::exists(In("a")));
}

TEST_F(LinuxCopyTest, ACopyIsWholeOnTheDiskBeforeItTakesTheTargetsPlace) {
  Watching watching;
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_EQ(watching.Calls(), (Names{"fsync file", "rename", "fsync folder"}));
  EXPECT_EQ(Bytes("b"), "new");
  EXPECT_EQ(Bytes("a"), "new");
}

TEST_F(LinuxCopyTest, ACopyThatFailsLeavesTheTargetAndNothingBeside) {
  for (const std::size_t failAt : {1, 2}) {
    Watching watching(failAt);
    EXPECT_FALSE(Copy("a", "b"));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(Bytes("b"), "old");
  }
}

TEST_F(LinuxCopyTest, ACopyWhoseNameIsNotLastingYetCountsAsFailed) {
  Watching watching(3);
  EXPECT_FALSE(Copy("a", "b"));
  EXPECT_EQ(Bytes("b"), "new");
}

TEST_F(LinuxFilesTest, ACopyThatFindsNoRoomLeavesTheTargetAndNothingBeside) {
  Put("a", std::string(300'000, 'n'));
  Put("b", "old");
  struct rlimit old;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
  const struct rlimit little = {100'000, old.rlim_max};
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
  const bool copied = Copy("a", "b");
  const std::uint32_t error = files.GetLastError();
  setrlimit(RLIMIT_FSIZE, &old);
  signal(SIGXFSZ, handler);
  EXPECT_FALSE(copied);
  EXPECT_EQ(error, static_cast<std::uint32_t>(EFBIG));
  EXPECT_EQ(Bytes("b"), "old");
  EXPECT_EQ(List(), (Names{"a", "b"}));
}

TEST_F(LinuxFilesTest, WhatTheSystemRefusesIsTold) {
  Put("a", "new");
  Put("b", "old");
  Link("b", "link");
  const std::unique_ptr<File> reading = OpenToRead(In("a"));
  const std::unique_ptr<File> writing = Create(In("c"));
  Write(*writing, "text");
  char byte;
  std::uint32_t read;
  FindData data;
  const struct {
    std::vector<Refusal> refusals;  // of one error
    std::function<bool()> act;
  } rows[] = {
      {{{SYS_read, EIO}}, [&] { return reading->ReadFile(&byte, 1, &read); }},
      {{{SYS_write, ENOSPC}}, [&] { return Write(*writing, "more"); }},
      {{{SYS_lseek, EIO}}, [&] { return reading->SetFilePointer(0, FILE_BEGIN, nullptr); }},
      {{{SYS_newfstatat, EIO}, {SYS_fstat, EIO}}, [&] { return OpenToRead(In("b")) != nullptr; }},
      {{{SYS_newfstatat, EBUSY}, {SYS_fstat, EBUSY}}, [&] { return Create(In("b")) != nullptr; }},
      {{{SYS_ftruncate, EIO}}, [&] { return Create(In("b")) != nullptr; }},
      {{{SYS_fcntl, EMFILE, F_DUPFD_CLOEXEC}}, [&] { return Create(In("b")) != nullptr; }},
      {{{SYS_chmod, EPERM}},
       [&] { return files.SetFileAttributesA(In("b"), FILE_ATTRIBUTE_READONLY); }},
      {{{SYS_chdir, EACCES}}, [&] { return files.SetCurrentDirectoryA(folder); }},
      {{{SYS_getcwd, ENOENT}}, [&] { return !files.GetCurrentDirectoryA().empty(); }},
      {{{SYS_getdents64, EIO}}, [&] { return files.FindFirstFileA(In("*"), &data) != nullptr; }},
      {{{SYS_statx, ENOENT}}, [&] { return files.FindFirstFileA(In("*"), &data) != nullptr; }},
      {{{SYS_readlink, EIO}}, [&] { return Copy("a", "link"); }},
      {{{SYS_read, EIO}}, [&] { return Copy("a", "b"); }},
      {{{SYS_write, ENOSPC}}, [&] { return Copy("a", "b"); }},
      {{{SYS_fchmod, EPERM}}, [&] { return Copy("a", "b"); }},
      {{{SYS_fchmod, EPERM}}, [&] { return Copy("a", "d"); }},
      {{{SYS_faccessat2, EACCES}}, [&] { return Copy("a", "b"); }},
      {{{SYS_renameat2, EIO}}, [&] { return files.CopyFileA(In("a"), In("d"), true); }},
      {{{SYS_close, EIO}}, [&] { return writing->CloseHandle(); }},
  };
  for (const auto& row : rows) {
    WhereRefused(row.refusals, [&] {
      EXPECT_FALSE(row.act()) << &row - rows;
      EXPECT_EQ(Error(), row.refusals.front().error) << &row - rows;
    });
    EXPECT_EQ(Bytes("b"), "old") << &row - rows;
    EXPECT_EQ(List(), (Names{"a", "b", "c", "link"})) << &row - rows;
  }
}

TEST_F(LinuxFilesTest, AFileSystemWithoutLocksAndLastingFoldersWillDo) {
  Put("a", "new");
  WhereRefused({{SYS_fcntl, ENOLCK, F_OFD_SETLK}}, [&] {
    const std::unique_ptr<File> file = Create(In("b"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(Write(*file, "1"));
    EXPECT_TRUE(Create(In("b"))) << "nobody has claimed it";
  });
  for (const int error : {EINVAL, ENOTSUP, ENOSYS})
    WhereRefused({{SYS_fsync, error}},
                 [&] { EXPECT_TRUE(files.CreateDirectoryA(In(std::to_string(error)))); });
  for (const int error : {EINVAL, ENOSYS})
    WhereRefused({{SYS_renameat2, error}}, [&] {
      EXPECT_TRUE(files.CopyFileA(In("a"), In("c" + std::to_string(error)), true));
    });
}

TEST_F(LinuxFilesTest, AReaderSeesTheOldOrTheNewAndNothingElse) {
  const std::string one(200'000, '1');
  const std::string two(150'000, '2');
  Put("one", one);
  Put("two", two);
  Put("target", one);
  std::atomic<bool> done{false};
  std::atomic<int> torn{0};
  std::thread reader([&] {
    while (!done) {
      const std::string seen = Bytes("target");
      if (seen != one && seen != two) ++torn;
    }
  });
  for (int round = 0; round < 50; ++round) {
    EXPECT_TRUE(Copy(round % 2 ? "one" : "two", "target"));
  }
  done = true;
  reader.join();
  EXPECT_EQ(torn, 0);
}

TEST_F(LinuxFilesTest, ACopyKeepsTheTargetsPermissions) {
  Put("a", "new", 0644);
  for (const mode_t mode : {0600, 0664, 0755, 0200}) {
    Put("b", "old", mode);
    EXPECT_TRUE(Copy("a", "b"));
    EXPECT_EQ(Mode("b"), mode);
  }
}

TEST_F(LinuxCopyTest, ACopyKeepsTheTargetsOwnerWhereThatIsAllowed) {
  struct stat mine;
  ASSERT_EQ(stat(In("b").c_str(), &mine), 0);
  // Another owner can be had by root only; for everyone else it stays their own.
  const bool given = geteuid() == 0 && chown(In("b").c_str(), 12'345, 23'456) == 0;
  EXPECT_TRUE(Copy("a", "b"));
  struct stat status;
  ASSERT_EQ(stat(In("b").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, given ? 12'345u : mine.st_uid);
  EXPECT_EQ(status.st_gid, given ? 23'456u : mine.st_gid);
  EXPECT_EQ(Bytes("b"), "new");
}

TEST_F(LinuxCopyTest, ACopyIsNotMadeWhereTheTargetsOwnerCanNotBeKeptForAnotherReason) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  for (const auto& [owner, group] : {std::pair(12'345, 0), std::pair(0, 23'456)}) {
    Put("b", "old");
    ASSERT_EQ(chown(In("b").c_str(), static_cast<uid_t>(owner), static_cast<gid_t>(group)), 0);
    WhereRefused({{SYS_fchown, EIO}}, [&] {
      EXPECT_FALSE(Copy("a", "b"));
      EXPECT_EQ(Error(), EIO);
    });
    EXPECT_EQ(Bytes("b"), "old");
    WhereRefused({{SYS_fchown, EPERM}}, [&] { EXPECT_TRUE(Copy("a", "b")); });
    EXPECT_EQ(Bytes("b"), "new");
  }
}

// Permissions of the published form: version 2, then tag, rights and id of each entry.
std::string AccessList(std::uint16_t rightsOfAnother) {
  struct Entry {
    std::uint16_t tag, rights;
    std::uint32_t id;
  };
  const std::uint32_t nobody = 0xFFFFFFFFu;
  const Entry entries[] = {{0x01, 6, nobody},                // owner
                           {0x02, rightsOfAnother, 12'345},  // one more user
                           {0x04, 4, nobody},                // group
                           {0x10, 6, nobody},                // the most that those two may have
                           {0x20, 0, nobody}};               // others
  const std::uint32_t version = 2;
  return std::string(reinterpret_cast<const char*>(&version), sizeof version) +
         std::string(reinterpret_cast<const char*>(entries), sizeof entries);
}

bool SetAccessList(const std::string& path, const char* kind, const std::string& list) {
  const bool set = setxattr(path.c_str(), kind, list.data(), list.size(), 0) == 0;
  EXPECT_TRUE(set || errno == ENOTSUP);
  return set;
}

constexpr char kNoLists[] = "the temporary folder's file system has no access lists";

TEST_F(LinuxCopyTest, ACopyKeepsTheTargetsListOfFurtherUsers) {
  const std::string list = AccessList(6);
  SKIP_UNLESS(SetAccessList(In("b"), "system.posix_acl_access", list), "acl", kNoLists);
  WhereRefused({{SYS_fsetxattr, ENOSPC}}, [&] { EXPECT_FALSE(Copy("a", "b")); });
  EXPECT_EQ(Bytes("b"), "old");
  EXPECT_TRUE(Copy("a", "b"));
  char kept[256];
  const ssize_t size = getxattr(In("b").c_str(), "system.posix_acl_access", kept, sizeof kept);
  ASSERT_GT(size, 0);
  EXPECT_EQ(std::string(kept, static_cast<std::size_t>(size)), list);
  EXPECT_EQ(Bytes("b"), "new");
}

TEST_F(LinuxFilesTest, ACopyGetsNoFurtherUsersFromItsFolder) {
  Put("a", "new");
  Put("b", "old", 0660);
  SKIP_UNLESS(SetAccessList(folder, "system.posix_acl_default", AccessList(6)), "acl", kNoLists);
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_EQ(getxattr(In("b").c_str(), "system.posix_acl_access", nullptr, 0), -1);
  EXPECT_EQ(errno, ENODATA);
  EXPECT_EQ(Mode("b"), 0660u);
}

TEST_F(LinuxFilesTest, ANewCopyTakesTheSourcesPermissions) {
  Put("a", "1", 0640);
  EXPECT_TRUE(files.CopyFileA(In("a"), In("b"), true));
  EXPECT_EQ(Mode("b"), 0640u);
  EXPECT_EQ(Bytes("b"), "1");
}

TEST_F(LinuxFilesTest, ACopyOverALinkReplacesWhatItLeadsTo) {
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  Put("a", "new");
  Put("sub/real", "old", 0600);
  Link("real", "sub/second");
  Link("sub/second", "first");
  EXPECT_TRUE(Copy("a", "first"));
  EXPECT_EQ(Bytes("sub/real"), "new");
  EXPECT_EQ(Mode("sub/real"), 0600u);
  EXPECT_TRUE(std::filesystem::is_symlink(In("first")));
  EXPECT_TRUE(std::filesystem::is_symlink(In("sub/second")));
}

TEST_F(LinuxFilesTest, ACopyOverALinkThatLeadsNowhereMakesWhatItNames) {
  Put("a", "new");
  Link(In("made"), "link");
  EXPECT_TRUE(files.CopyFileA("a", "link", false));
  EXPECT_EQ(Bytes("made"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(In("link")));
}

TEST_F(LinuxFilesTest, LinksInARingAreAFailure) {
  Put("a", "new");
  Link("two", "one");
  Link("one", "two");
  EXPECT_FALSE(Copy("a", "one"));
  EXPECT_EQ(Error(), ELOOP);
  EXPECT_FALSE(OpenToRead(In("one")));
}

TEST_F(LinuxFilesTest, OnlyTheLastPartOfASearchIsAPattern) {
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  Put("sub/a", "");
  EXPECT_EQ(Found(In("s*/a")), Names());
  EXPECT_EQ(Found(In("SUB/a")), Names());
  EXPECT_EQ(Found("sub/*a*"), Names{"a"});
}

TEST_F(LinuxFilesTest, ASearchForANameFindsJustThatOneFirst) {
  Put("name", "1");
  Put("NAME", "22");
  FindData data;
  ASSERT_TRUE(files.FindFirstFileA(In("NAME"), &data));
  EXPECT_EQ(data.name, "NAME");
  EXPECT_EQ(data.size, 2u);
  EXPECT_EQ(Found(In("name")), Names{"name"});
  EXPECT_EQ(Found(In("nAmE")), (Names{"NAME", "name"}));
}

TEST_F(LinuxFilesTest, DataOfWhatIsFound) {
  Put("a", "12345", 0444);
  // 2001-02-03 04:05:06.7 UTC; 11,644,473,600 s lie between 1601 and 1970.
  const struct timespec times[] = {{981'173'107, 0}, {981'173'106, 700'000'000}};
  ASSERT_EQ(utimensat(AT_FDCWD, In("a").c_str(), times, 0), 0);
  FindData data;
  ASSERT_TRUE(files.FindFirstFileA(In("a*"), &data));
  EXPECT_EQ(data.name, "a");
  EXPECT_EQ(data.attributes, FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(data.size, 5u);
  EXPECT_EQ(data.written, 126'256'467'067'000'000u);
  EXPECT_EQ(data.accessed, 126'256'467'070'000'000u);
  EXPECT_GT(data.created, 0u);
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  ASSERT_TRUE(files.FindFirstFileA(In("sub"), &data));
  EXPECT_EQ(data.attributes, FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(data.size, 0u);
}

TEST_F(LinuxFilesTest, ALinkIsFoundAsWhatItLeadsTo) {
  Put("a", "12345");
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  Link("a", "x1");
  Link("sub", "x2");
  Link("nowhere", "x3");
  for (const char* last : {"", "*"}) {
    FindData data;
    ASSERT_TRUE(files.FindFirstFileA(In("x1") + last, &data));
    EXPECT_EQ(data.attributes, FILE_ATTRIBUTE_REPARSE_POINT);
    EXPECT_EQ(data.size, 5u);
    ASSERT_TRUE(files.FindFirstFileA(In("x2") + last, &data));
    EXPECT_EQ(data.attributes, FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY);
    ASSERT_TRUE(files.FindFirstFileA(In("x3") + last, &data));
    EXPECT_EQ(data.attributes, FILE_ATTRIBUTE_REPARSE_POINT);
  }
}

TEST_F(LinuxFilesTest, CurrentFolder) {
  EXPECT_EQ(files.GetCurrentDirectoryA(), folder);
  ASSERT_TRUE(files.CreateDirectoryA("sub"));
  EXPECT_TRUE(files.SetCurrentDirectoryA("sub"));
  EXPECT_EQ(files.GetCurrentDirectoryA(), In("sub"));
  EXPECT_FALSE(files.SetCurrentDirectoryA("none"));
  EXPECT_EQ(Error(), ENOENT);
  ASSERT_EQ(rmdir(In("sub").c_str()), 0);
  EXPECT_EQ(files.GetCurrentDirectoryA(), "");
}

TEST_F(LinuxFilesTest, TheProgramsOwnFile) {
  EXPECT_EQ(files.GetModuleFileNameA(), std::filesystem::read_symlink("/proc/self/exe").string());
  EXPECT_TRUE(std::filesystem::exists(files.GetModuleFileNameA()));
}

TEST_F(LinuxFilesTest, ThereAreNoDrives) {
  EXPECT_EQ(files.GetLogicalDrives(), 0u);
  EXPECT_EQ(files.PathSeparator(), '/');
}

}  // namespace
}  // namespace platform
