// Files and folders, as every system has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "app/platform/machine/this_machine.h"
#include "tests/host/files.h"
#include "tests/platform/files_by_hand.h"

namespace platform {
namespace {

using kelvaro::tests::Content;
using kelvaro::tests::TemporaryFolder;

// The system's own numbers: of a path that names nothing, and the rest.
#ifdef _WIN32
constexpr int kNoPath = 123;
constexpr int kBusy = 32;
constexpr int kDenied = 5;
constexpr int kExists = 80;
constexpr int kNotFound = 2;
#else
constexpr int kNoPath = EINVAL;
constexpr int kBusy = EBUSY;
constexpr int kDenied = EACCES;
constexpr int kExists = EEXIST;
constexpr int kNotFound = ENOENT;
#endif

// A temporary folder, which is also the current one.
class FilesTest : public ::testing::Test, protected TemporaryFolder {
 protected:
  FilesTest() { std::filesystem::current_path(folder); }
  ~FilesTest() override { std::filesystem::current_path(before); }

  void Put(const std::string& name, const std::string& bytes, unsigned mode = 0644) const {
    kelvaro::tests::Put(In(name), bytes, mode);
  }
  std::string Bytes(const std::string& name) const { return Content(In(name)); }

  // In the order of the file system, hidden ones included.
  Names Listed() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      names.push_back(entry.path().filename().string());
    return names;
  }
  static Names Sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
  }
  Names List() const { return Sorted(Listed()); }
  Names Found(const std::string& pattern) { return Sorted(platform::Found(files, pattern)); }

  std::unique_ptr<File> OpenToRead(const std::string& path) {
    return platform::OpenToRead(files, path);
  }
  std::unique_ptr<File> Create(const std::string& path) { return platform::Create(files, path); }
  bool Copy(const std::string& from, const std::string& to) {
    return files.CopyFileA(In(from), In(to), false);
  }
  int Error() { return static_cast<int>(files.GetLastError()); }

  ThisFiles files;
  const std::filesystem::path before = std::filesystem::current_path();
};

TEST_F(FilesTest, WritesReadsAndSeeks) {
  const std::unique_ptr<File> file = Create(In("a"));
  ASSERT_TRUE(file);
  EXPECT_TRUE(Write(*file, "hello world"));
  std::int64_t position = 0;
  EXPECT_TRUE(file->SetFilePointer(6, FILE_BEGIN, &position));
  EXPECT_EQ(position, 6);
  EXPECT_EQ(ReadAll(*file), "world");
  EXPECT_EQ(ReadAll(*file), "");
  EXPECT_TRUE(file->SetFilePointer(-11, FILE_CURRENT, nullptr));
  EXPECT_TRUE(Write(*file, "J"));
  EXPECT_TRUE(file->SetFilePointer(2, FILE_END, &position));
  EXPECT_EQ(position, 13);
  EXPECT_TRUE(Write(*file, "!"));
  EXPECT_FALSE(file->SetFilePointer(-1, FILE_BEGIN, nullptr));
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
