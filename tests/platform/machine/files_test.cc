// Files and folders, as every system has them.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "tests/platform/machine/files_fixture.h"

namespace platform {
namespace {

// The system's own numbers: of a path that names nothing, and the rest.
#ifdef _WIN32
constexpr int kNoPath = 123;
constexpr int kBusy = 32;
constexpr int kDenied = 5;
constexpr int kExists = 80;
constexpr int kNotFound = 2;
constexpr int kBeforeItsStart = 131;
#else
constexpr int kNoPath = EINVAL;
constexpr int kBusy = EBUSY;
constexpr int kDenied = EACCES;
constexpr int kExists = EEXIST;
constexpr int kNotFound = ENOENT;
constexpr int kBeforeItsStart = EINVAL;
#endif

TEST_F(FilesTest, WritesReadsAndSeeks) {
  const std::unique_ptr<File> file = Create(In("a"));
  ASSERT_TRUE(file);
  WritesReadsAndSeeks(*file);
  EXPECT_EQ(Error(), kBeforeItsStart);
  EXPECT_FALSE(file->SetFilePointer(0, 3, nullptr));
  EXPECT_TRUE(file->CloseHandle());
  EXPECT_EQ(Bytes("a"), std::string("Jello world\0\0!", 14));
}

TEST_F(FilesTest, APathWithAZeroByteNamesNothing) {
  Put("a", "1");
  const std::string path = In("a") + std::string("\0.idprof", 8);
  EXPECT_FALSE(OpenToRead(path));
  EXPECT_FALSE(Create(path));
  EXPECT_FALSE(files.CopyFileA(path, In("b"), false));
  EXPECT_FALSE(files.CopyFileA(In("a"), path, false));
  EXPECT_FALSE(files.DeleteFileA(path));
  EXPECT_EQ(files.GetFileAttributesA(path), INVALID_FILE_ATTRIBUTES);
  EXPECT_FALSE(files.SetFileAttributesA(path, FILE_ATTRIBUTE_READONLY));
  EXPECT_FALSE(files.CreateDirectoryA(path));
  EXPECT_FALSE(files.SetCurrentDirectoryA(folder + std::string("\0", 1)));
  FindData data;
  EXPECT_FALSE(files.FindFirstFileA(path, &data));
  EXPECT_EQ(List(), Names{"a"});
  EXPECT_EQ(Bytes("a"), "1");
  EXPECT_EQ(Error(), kNoPath);
}

TEST_F(FilesTest, AWriterThatDoesntShareWritingIsTheOnlyOne) {
  std::unique_ptr<File> first = Create(In("a"));
  ASSERT_TRUE(first);
  EXPECT_TRUE(Write(*first, "first"));
  EXPECT_FALSE(Create(In("a")));
  EXPECT_EQ(Error(), kBusy);
  EXPECT_EQ(Bytes("a"), "first") << "not emptied";
  EXPECT_FALSE(files.CreateFileA(In("a"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING));
  EXPECT_FALSE(files.DeleteFileA(In("a")));
  EXPECT_EQ(Error(), kBusy);
  EXPECT_TRUE(OpenToRead(In("a"))) << "who shares writing is let in";
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_TRUE(Create(In("b"))) << "another file";
  EXPECT_TRUE(first->CloseHandle());
  EXPECT_FALSE(Create(In("a"))) << "until the object goes";
  first.reset();
  EXPECT_TRUE(Create(In("a")));
  EXPECT_TRUE(files.DeleteFileA(In("a")));
}

TEST_F(FilesTest, ReadersThatDontShareWritingKeepWritersOutTogether) {
  Put("a", "old");
  const auto open = [this] {
    return files.CreateFileA(In("a"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
  };
  std::unique_ptr<File> one = open();
  std::unique_ptr<File> two = open();
  ASSERT_TRUE(one && two);
  EXPECT_FALSE(Create(In("a")));
  EXPECT_EQ(Bytes("a"), "old");
  one.reset();
  EXPECT_FALSE(Create(In("a")));
  two.reset();
  EXPECT_TRUE(Create(In("a")));
}

// Root included, whom Linux itself would let through.
TEST_F(FilesTest, AReadOnlyFileIsNotWrittenReplacedOrDeleted) {
  Put("a", "old", 0444);
  Put("b", "new");
  EXPECT_FALSE(Create(In("a")));
  EXPECT_EQ(Error(), kDenied);
  EXPECT_FALSE(files.CreateFileA(In("a"), GENERIC_WRITE, 0, OPEN_EXISTING));
  EXPECT_FALSE(Copy("b", "a"));
  EXPECT_EQ(Error(), kDenied);
  EXPECT_FALSE(files.DeleteFileA(In("a")));
  EXPECT_EQ(Error(), kDenied);
  EXPECT_EQ(Bytes("a"), "old");
  EXPECT_TRUE(OpenToRead(In("a")));
  EXPECT_EQ(List(), (Names{"a", "b"}));
}

TEST_F(FilesTest, ACopyNeedsAFileOnBothSides) {
  Put("a", "1");
  EXPECT_FALSE(Copy("none", "b"));
  EXPECT_FALSE(files.CopyFileA(folder, In("b"), false));
  EXPECT_FALSE(files.CopyFileA(In("a"), folder, false));
  EXPECT_FALSE(Copy("a", "none/b"));
  EXPECT_EQ(List(), Names{"a"});
}

TEST_F(FilesTest, ACopyIsRefusedOverAFileThatMustNotBeThere) {
  Put("a", "new");
  Put("b", "old");
  EXPECT_FALSE(files.CopyFileA(In("a"), In("b"), true));
  EXPECT_EQ(Error(), kExists);
  EXPECT_EQ(Bytes("b"), "old");
}

TEST_F(FilesTest, ACopyToAPlainNameGoesToTheCurrentFolder) {
  Put("a", "1");
  EXPECT_TRUE(files.CopyFileA("a", "b", false));
  EXPECT_EQ(Bytes("b"), "1");
  EXPECT_EQ(List(), (Names{"a", "b"}));
}

TEST_F(FilesTest, SearchesFitNamesWithoutRegardToCase) {
  for (const char* name : {"a.idprof", "B.IDPROF", "c.idprof.tmp", "d", ".hidden"}) Put(name, "");
  EXPECT_EQ(Found(In("*.idprof")), (Names{"B.IDPROF", "a.idprof"}));
  EXPECT_EQ(Found("*.idprof"), (Names{"B.IDPROF", "a.idprof"}));
  EXPECT_EQ(Found(In("?")), (Names{".", "d"}));
  EXPECT_EQ(Found(In("*")),
            (Names{".", "..", ".hidden", "B.IDPROF", "a.idprof", "c.idprof.tmp", "d"}));
  EXPECT_EQ(Found(In("none*")), Names());
  EXPECT_EQ(Found(In("")), Names());
  EXPECT_EQ(Found(In("none/*")), Names());
  EXPECT_EQ(Found(In("d/*")), Names());
}

TEST_F(FilesTest, NamesComeInTheOrderOfTheFileSystem) {
  for (int number = 0; number < 30; ++number) Put(std::to_string(number * 7 % 31), "");
  Names found = platform::Found(files, In("*"));
  std::erase_if(found, [](const std::string& name) { return name == "." || name == ".."; });
  EXPECT_EQ(found, Listed());
}

TEST_F(FilesTest, EveryThreadHasItsOwnLastError) {
  EXPECT_FALSE(files.DeleteFileA(In("none")));
  std::thread other([this] {
    EXPECT_EQ(files.GetLastError(), 0u);
    EXPECT_FALSE(files.SetCurrentDirectoryA(std::string("\0", 1)));
    EXPECT_EQ(Error(), kNoPath);
  });
  other.join();
  EXPECT_EQ(Error(), kNotFound);
}

TEST_F(FilesTest, ACopyReplacesTheTargetBesideItsReaders) {
  Put("a", "new");
  Put("b", "old");
  std::unique_ptr<File> reading = OpenToRead(In("b"));
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_EQ(Bytes("b"), "new");
  EXPECT_EQ(ReadAll(*reading), "old");
  reading.reset();  // the last of the old file
  EXPECT_EQ(List(), (Names{"a", "b"}));
}

TEST_F(FilesTest, NamesAreUtf8) {
  const std::string name = "Gr\xC3\xBC\xC3\x9F\xE2\x82\xAC.idprof";
  const std::unique_ptr<File> file = Create(In(name));
  ASSERT_TRUE(file);
  EXPECT_EQ(Found(In("*.idprof")), Names{name});
  EXPECT_EQ(Found(In(name)), Names{name});
  EXPECT_EQ(files.GetFileAttributesA(In(name)), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FilesTest, TheReadOnlyAttributeOfAFileGoesOnAndOff) {
  Put("a", "1");
  EXPECT_EQ(files.GetFileAttributesA(In("a")), FILE_ATTRIBUTE_NORMAL);
  EXPECT_TRUE(files.SetFileAttributesA(In("a"), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(files.GetFileAttributesA(In("a")), FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(files.SetFileAttributesA(In("a"), FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(files.GetFileAttributesA(In("a")), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(files.GetFileAttributesA(folder), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(files.GetFileAttributesA(In("none")), INVALID_FILE_ATTRIBUTES);
  EXPECT_FALSE(files.SetFileAttributesA(In("none"), FILE_ATTRIBUTE_NORMAL));
}

TEST_F(FilesTest, AFolderIsMadeOnce) {
  EXPECT_TRUE(files.CreateDirectoryA(In("sub")));
  EXPECT_FALSE(files.CreateDirectoryA(In("sub")));
  EXPECT_FALSE(files.CreateDirectoryA(In("none/sub")));
  EXPECT_EQ(Found("*"), (Names{".", "..", "sub"}));
}

TEST_F(FilesTest, TheCurrentFolderIsWhereNamesWithoutOneAre) {
  EXPECT_EQ(files.GetCurrentDirectoryA(), folder);
  ASSERT_TRUE(files.CreateDirectoryA("sub"));
  EXPECT_TRUE(files.SetCurrentDirectoryA("sub"));
  EXPECT_EQ(files.GetCurrentDirectoryA(), In("sub"));
  EXPECT_FALSE(files.SetCurrentDirectoryA("none"));
  EXPECT_EQ(Error(), kNotFound);
  EXPECT_TRUE(files.SetCurrentDirectoryA(".."));
}

TEST_F(FilesTest, TheProgramsOwnFileIsThere) {
  EXPECT_TRUE(std::filesystem::exists(files.GetModuleFileNameA()));
  EXPECT_NE(files.GetModuleFileNameA().find("test_machine"), std::string::npos);
}

}  // namespace
}  // namespace platform
