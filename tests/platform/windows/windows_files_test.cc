#include "app/platform/windows/windows_files.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/platform/machine/files_fixture.h"

// Last.
#include "app/platform/windows/win32.h"

extern "C" decltype(&FlushFileBuffers) __imp_FlushFileBuffers;

namespace platform {
namespace {

using WindowsFilesTest = FilesTest;

TEST_F(WindowsFilesTest, TextIsUtf8) { EXPECT_EQ(GetACP(), 65001u); }

TEST_F(WindowsFilesTest, DevicesAreNoFilesInAnyFolder) {
  for (const std::string& name :
       {std::string("NUL"), std::string("CON"), In("NUL.x"), In("con.idprof"), In("COM1 .y")}) {
    EXPECT_FALSE(OpenToRead(name)) << name;
    EXPECT_EQ(files.GetLastError(), ERROR_INVALID_NAME) << name;
    EXPECT_FALSE(Create(name)) << name;
    EXPECT_EQ(files.GetFileAttributesA(name), 0xFFFFFFFFu) << name;
    EXPECT_EQ(files.GetLastError(), ERROR_INVALID_NAME) << name;
  }
  EXPECT_TRUE(Create(In("CONS.x")));
  EXPECT_FALSE(Create(In("a?b")));
  EXPECT_FALSE(OpenToRead(folder));
}

TEST_F(WindowsFilesTest, BothSeparatorsPartAPath) {
  EXPECT_EQ(files.PathSeparator(), '\\');
  ASSERT_TRUE(files.CreateDirectoryA(In("sub")));
  ASSERT_TRUE(Create(folder + "/sub/a"));
  EXPECT_EQ(Found(folder + "/sub\\a*"), Names{"a"});
  EXPECT_TRUE(files.CopyFileA(folder + "/sub/a", folder + "\\sub/b", true));
  EXPECT_EQ(Found(In("sub\\b")), Names{"b"});
}

TEST_F(WindowsFilesTest, ADotIsNoWildcard) {
  ASSERT_TRUE(Create(In("plain")));
  ASSERT_TRUE(Create(In("a.b")));
  EXPECT_EQ(Found(In("*.*")), (Names{".", "..", "a.b"}));
  EXPECT_EQ(Found(In("PLAIN")).size(), 1u);
}

TEST_F(WindowsFilesTest, DataOfWhatIsFound) {
  {
    const std::unique_ptr<File> file = Create(In("a"));
    ASSERT_TRUE(Write(*file, "12345"));
  }
  const HANDLE file =
      ::CreateFileA(In("a").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, 3, 0, nullptr);
  // 2001-02-03 04:05:06.7 UTC.
  constexpr std::uint64_t kWritten = 126'256'467'067'000'000u;
  const FILETIME written = {static_cast<DWORD>(kWritten), static_cast<DWORD>(kWritten >> 32)};
  EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &written));
  ::CloseHandle(file);
  ASSERT_TRUE(files.SetFileAttributesA(In("a"), 1));
  FindData data;
  ASSERT_TRUE(files.FindFirstFileA(In("a*"), &data));
  EXPECT_EQ(data.name, "a");
  EXPECT_EQ(data.attributes, 1u);
  EXPECT_EQ(data.size, 5u);
  EXPECT_EQ(data.written, kWritten);
  ASSERT_TRUE(files.FindFirstFileA(folder, &data));
  EXPECT_EQ(data.attributes, 0x10u);
  EXPECT_TRUE(files.SetFileAttributesA(In("a"), 0));
}

// Levels of 60 characters, until the path is longer than any that the old limit allows.
TEST_F(WindowsFilesTest, APathMayHaveAnyLength) {
  std::string deep = folder;
  while (deep.size() < 1000) {
    deep += "\\" + std::string(60, 'd');
    ASSERT_TRUE(files.CreateDirectoryA(deep)) << deep.size() << ": " << files.GetLastError();
    const std::string path = deep + "\\file";
    {
      const std::unique_ptr<File> file = Create(path);
      ASSERT_TRUE(file) << path.size() << ": " << files.GetLastError();
      ASSERT_TRUE(Write(*file, "12345"));
    }
    EXPECT_EQ(files.GetFileAttributesA(path), FILE_ATTRIBUTE_NORMAL) << path.size();
    EXPECT_TRUE(files.SetFileAttributesA(path, FILE_ATTRIBUTE_READONLY)) << path.size();
    EXPECT_TRUE(files.SetFileAttributesA(path, FILE_ATTRIBUTE_NORMAL)) << path.size();
    EXPECT_TRUE(files.CopyFileA(path, deep + "\\copy", true)) << path.size();
    EXPECT_TRUE(files.CopyFileA(path, deep + "\\copy", false)) << path.size();
    EXPECT_TRUE(files.DeleteFileA(path)) << path.size();
    EXPECT_EQ(Found(deep + "\\*y"), Names{"copy"}) << path.size();
  }
}

// What is flushed as long as it lives, by this program's own import of the operation.
class Flushes {
 public:
  Flushes() {
    SetImport(&Count);
    folders = 0;
    rest = 0;
  }
  ~Flushes() { SetImport(system); }
  Flushes(const Flushes&) = delete;
  Flushes& operator=(const Flushes&) = delete;

  static inline int folders = 0;
  static inline int rest = 0;

 private:
  using Flush = decltype(&FlushFileBuffers);

  static void SetImport(Flush flush) {
    DWORD before = 0;
    VirtualProtect(&__imp_FlushFileBuffers, sizeof flush, PAGE_READWRITE, &before);
    __imp_FlushFileBuffers = flush;
    VirtualProtect(&__imp_FlushFileBuffers, sizeof flush, before, &before);
  }
  static BOOL WINAPI Count(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION known = {};
    GetFileInformationByHandle(file, &known);
    ++(known.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY ? folders : rest);
    return system(file);
  }

  static inline const Flush system = __imp_FlushFileBuffers;
};

TEST_F(WindowsFilesTest, AFolderIsFlushedWhereANameInItChanges) {
  const Flushes flushes;
  ASSERT_TRUE(Write(*Create(In("a")), "12345"));
  EXPECT_TRUE(files.CopyFileA(In("a"), In("b"), true));
  EXPECT_EQ(flushes.folders, 1);
  EXPECT_EQ(flushes.rest, 1) << "the copy";
  EXPECT_TRUE(files.CopyFileA(In("a"), In("b"), false));
  EXPECT_EQ(flushes.folders, 2);
  EXPECT_TRUE(files.DeleteFileA(In("b")));
  EXPECT_EQ(flushes.folders, 3);
  EXPECT_TRUE(files.CopyFileA(In("a"), In("b"), true));
  EXPECT_FALSE(files.CopyFileA(In("a"), In("b"), true));
  EXPECT_FALSE(files.DeleteFileA(In("c")));
  EXPECT_EQ(flushes.folders, 4) << "what fails changes nothing";
}

TEST_F(WindowsFilesTest, DrivesHaveTheirBits) { EXPECT_NE(files.GetLogicalDrives() & 4, 0u); }

TEST_F(WindowsFilesTest, AFileInUseByAnotherProgramIsNeitherReplacedNorDeleted) {
  ASSERT_TRUE(Create(In("a")));
  ASSERT_TRUE(Create(In("b")));
  const HANDLE other = ::CreateFileA(In("b").c_str(), 0x80000000u, 0, nullptr, 3, 0, nullptr);
  EXPECT_FALSE(files.CopyFileA(In("a"), In("b"), false));
  EXPECT_FALSE(files.DeleteFileA(In("b")));
  EXPECT_EQ(Error(), 32);
  ::CloseHandle(other);
  EXPECT_EQ(Found(In("*")), (Names{".", "..", "a", "b"}));
}

TEST(WindowsSystem, TellsErrorsAndFolders) {
  WindowsSystem system;
  EXPECT_TRUE(system.FormatMessageA(2).ends_with("\r\n"));
  EXPECT_EQ(system.FormatMessageA(0x2FFFFFFFu), "");
  EXPECT_NE(WindowsFiles().GetFileAttributesA(system.GetUserDataFolder()), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace platform
