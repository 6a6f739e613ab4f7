#include "foundation/paths.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

using platform::FILE_ATTRIBUTE_DIRECTORY;
using platform::FILE_ATTRIBUTE_READONLY;
using platform::simulation::DiskOperation;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

// The paths that were asked to be made, in order.
std::vector<std::string> Made(const VirtualDisk& disk) {
  std::vector<std::string> paths;
  for (const DiskOperation& operation : disk.Log()) {
    if (operation.name == "CreateDirectoryA") paths.push_back(operation.path);
  }
  return paths;
}

using Paths = std::vector<std::string>;

// A disk with drive C.
class DrivePathsTest : public ::testing::Test {
 protected:
  DrivePathsTest() { disk.Format('\\'); }
  Simulation sim;
  VirtualDisk& disk = sim.Disk();
};

class SlashPathsTest : public ::testing::Test {
 protected:
  Simulation sim;
  VirtualDisk& disk = sim.Disk();
};

TEST_F(DrivePathsTest, ABareDriveExistsByTheMaskAlone) {
  disk.SetDrives(1u << 0 | 1u << 2 | 1u << 25);
  for (const char* path : {"A:", "a:\\", "C:", "c:", "C:\\", "Z:\\", "z:"}) {
    EXPECT_TRUE(FileExists(path)) << path;
  }
  for (const char* path : {"B:", "b:\\", "D:", "Y:\\"}) EXPECT_FALSE(FileExists(path)) << path;
  EXPECT_TRUE(disk.Log().empty());
  disk.SetDrives(0);
  EXPECT_FALSE(FileExists("C:"));
  EXPECT_FALSE(FileExists("C:\\"));
  EXPECT_TRUE(disk.Log().empty());
}

TEST_F(DrivePathsTest, APathOnADriveIsLookedUpOnTheDisk) {
  disk.PutFile("C:\\x", "");
  EXPECT_TRUE(FileExists("C:\\x"));
  EXPECT_TRUE(FileExists("C:\\game"));  // a folder counts
  EXPECT_FALSE(FileExists("C:\\y"));
  EXPECT_EQ(disk.Count("GetFileAttributesA"), 3u);
  disk.SetDrives(0);
  EXPECT_TRUE(FileExists("C:\\x"));
}

TEST_F(DrivePathsTest, AnythingBelowTwoBytesDoesNotExist) {
  disk.PutFile("C", "");
  EXPECT_TRUE(disk.Exists("C"));
  EXPECT_FALSE(FileExists("C"));
  EXPECT_FALSE(FileExists("\\"));
  EXPECT_FALSE(FileExists(""));
  EXPECT_FALSE(FileExists(nullptr));
  EXPECT_TRUE(disk.Log().empty());
}

TEST_F(DrivePathsTest, OnlyLettersNameDrives) {
  disk.SetDrives(0xFFFFFFFFu);
  for (const char* path : {"1:", "[:", "@:", "`:\\", "{:"}) {
    disk.ClearLog();
    EXPECT_FALSE(FileExists(path)) << path;
    EXPECT_EQ(disk.Count("GetFileAttributesA"), 1u) << path;
  }
}

TEST_F(SlashPathsTest, OneByteNamesAFileOrTheRootAndNothingNamesADrive) {
  EXPECT_FALSE(FileExists("C:"));
  EXPECT_FALSE(FileExists("C:/"));
  EXPECT_TRUE(disk.Log().empty());
  disk.PutFile("a", "");
  EXPECT_TRUE(FileExists("a"));
  EXPECT_TRUE(FileExists("/"));
  EXPECT_FALSE(FileExists("b"));
  EXPECT_FALSE(FileExists(""));
  EXPECT_FALSE(FileExists(nullptr));
}

TEST(FolderOf, IsWhatStandsBeforeTheLastSeparator) {
  struct Row {
    char separator;
    const char *path, *without, *with;
  };
  for (const Row& row :
       {Row{'\\', "a.txt", "", ""}, Row{'\\', "C:\\a\\b.txt", "C:\\a", "C:\\a\\"},
        Row{'\\', "", "", ""}, Row{'\\', "\\", "", "\\"}, Row{'\\', "\\a", "", "\\"},
        Row{'\\', "C:\\", "C:", "C:\\"}, Row{'\\', "C:\\a\\", "C:\\a", "C:\\a\\"},
        Row{'\\', "a/b\\c", "a/b", "a/b\\"}, Row{'\\', "/a/b", "", ""}, Row{'/', "a.txt", "", ""},
        Row{'/', "/a/b.txt", "/a", "/a/"}, Row{'/', "/", "", "/"}, Row{'/', "/a", "", "/"},
        Row{'/', "a\\b/c", "a\\b", "a\\b/"}, Row{'/', "C:\\a", "", ""}}) {
    EXPECT_EQ(Bytes(FolderOf(row.path, true, row.separator)), row.without) << row.path;
    EXPECT_EQ(Bytes(FolderOf(row.path, false, row.separator)), row.with) << row.path;
  }
}

TEST(FileNameOf, IsWhatStandsBehindTheLastSeparator) {
  struct Row {
    char separator;
    const char *path, *name;
  };
  for (const Row& row :
       {Row{'\\', "C:\\a\\b.txt", "b.txt"}, Row{'\\', "b.txt", "b.txt"}, Row{'\\', "", ""},
        Row{'\\', "C:\\a\\", ""}, Row{'\\', "a/b", "a/b"}, Row{'\\', "C:x", "C:x"},
        Row{'/', "/a/b.txt", "b.txt"}, Row{'/', "b.txt", "b.txt"}, Row{'/', "a/", ""},
        Row{'/', "a\\b", "a\\b"}}) {
    EXPECT_STREQ(FileNameOf(row.path, row.separator), row.name) << row.path;
    const ByteString path(row.path);
    EXPECT_STREQ(FileNameOf(path, row.separator), row.name) << row.path;
  }
}

TEST(FileNameOf, IsAPositionInsideTheArgument) {
  const char* const text = "C:\\a\\b.txt";
  EXPECT_EQ(FileNameOf(text, '\\'), text + 5);
  const ByteString path(text);
  EXPECT_EQ(FileNameOf(path, '\\'), path.Text() + 5);
  EXPECT_EQ(FileNameOf(static_cast<const char*>(nullptr), '\\'), nullptr);
}

TEST(RootOf, IsTheDriveOrShareOfAPathWithBackslashes) {
  struct Row {
    const char *path, *without, *with;
  };
  for (const Row& row : {
           Row{"C:\\a\\b", "C:", "C:\\"},
           Row{"C:\\", "C:", "C:\\"},
           Row{"C:", "C:", "C:\\"},
           Row{"\\\\srv\\share\\x", "\\\\srv\\share", "\\\\srv\\share\\"},
           Row{"\\\\srv\\share\\", "\\\\srv\\share", "\\\\srv\\share\\"},
           Row{"\\\\srv\\share", "\\\\srv\\share", "\\\\srv\\share\\"},
           Row{"\\\\srv\\", "\\\\srv\\", "\\\\srv\\"},
           Row{"\\\\srv", "\\", "\\"},  // without a share it is cut before its second backslash
           Row{"\\a\\b", "\\a", "\\a\\"},
           Row{"a\\b", "a", "a\\"},
           Row{"a\\b\\c", "a", "a\\"},
           Row{"\\a", "\\a", "\\a\\"},
           Row{"ab", "ab", "ab\\"},
           Row{"", "", "\\"},
           Row{"a", "a", "a\\"},
           Row{"\\", "\\", "\\"},
       }) {
    EXPECT_EQ(Bytes(RootOf(row.path, true, '\\')), row.without) << row.path;
    EXPECT_EQ(Bytes(RootOf(row.path, false, '\\')), row.with) << row.path;
  }
}

TEST(RootOf, IsTheLeadingSlashOfAPathWithSlashes) {
  const struct {
    const char *path, *root;
  } rows[] = {{"/a/b", "/"}, {"/a", "/"}, {"/", "/"}, {"//a/b", "//"}, {"a/b", ""}, {"", ""}};
  for (const auto& row : rows) {
    EXPECT_EQ(Bytes(RootOf(row.path, true, '/')), row.root) << row.path;
    EXPECT_EQ(Bytes(RootOf(row.path, false, '/')), row.root) << row.path;
  }
}

TEST(EnsureTrailingSeparator, AppendsOneWhereNoneIs) {
  struct Row {
    char separator;
    const char *path, *result;
  };
  for (const Row& row : {Row{'\\', "a", "a\\"}, Row{'\\', "a\\", "a\\"}, Row{'\\', "", "\\"},
                         Row{'/', "a", "a/"}, Row{'/', "a/", "a/"}, Row{'/', "a\\", "a\\/"}}) {
    ByteString path(row.path);
    EnsureTrailingSeparator(&path, row.separator);
    EXPECT_EQ(Bytes(path), row.result);
  }
}

TEST_F(DrivePathsTest, EveryLevelBelowTheRootIsMade) {
  EXPECT_TRUE(CreateFolders("C:\\a\\b\\c\\"));
  EXPECT_EQ(Made(disk), (Paths{"C:\\a", "C:\\a\\b", "C:\\a\\b\\c"}));
  disk.ClearLog();
  EXPECT_TRUE(CreateFolders("C:\\a\\d"));
  EXPECT_EQ(Made(disk), Paths{"C:\\a\\d"}) << "the missing one alone";
}

TEST_F(DrivePathsTest, AShareIsTakenAsGiven) {
  disk.PutFolder("\\\\srv\\share");
  EXPECT_TRUE(CreateFolders("\\\\srv\\share\\a\\b"));
  EXPECT_EQ(Made(disk), (Paths{"\\\\srv\\share\\a", "\\\\srv\\share\\a\\b"}));
}

TEST_F(DrivePathsTest, NothingAndABareRootTouchNothing) {
  for (const char* path : {"", "C:", "C:\\", "\\\\srv\\share", "\\\\srv\\share\\", "Q:\\"}) {
    EXPECT_TRUE(CreateFolders(path)) << path;
  }
  EXPECT_TRUE(disk.Log().empty());
}

// Kept: a relative path's first part counts as its root here, so it isn't made.
TEST_F(DrivePathsTest, TheFirstPartOfARelativePathIsTakenAsGiven) {
  EXPECT_FALSE(CreateFolders("a\\b"));
  EXPECT_EQ(Made(disk), Paths{"a\\b"});
  disk.PutFolder("a");
  EXPECT_TRUE(CreateFolders("a\\b"));
  EXPECT_TRUE(disk.Exists("C:\\home\\player\\a\\b"));
}

TEST_F(DrivePathsTest, AFileInThePlaceOfALevelPasses) {
  disk.PutFile("C:\\file", "");
  EXPECT_TRUE(CreateFolders("C:\\file"));
  EXPECT_TRUE(Made(disk).empty());
  EXPECT_FALSE(CreateFolders("C:\\file\\b"));
}

TEST_F(DrivePathsTest, TheFirstLevelThatCannotBeMadeEndsIt) {
  // Two operations a level: is it there, make it.
  disk.FailOperation(4);
  EXPECT_FALSE(CreateFolders("C:\\a\\b\\c"));
  EXPECT_EQ(Made(disk), (Paths{"C:\\a", "C:\\a\\b"}));
  EXPECT_TRUE(disk.Exists("C:\\a"));
  EXPECT_FALSE(disk.Exists("C:\\a\\b"));
}

TEST_F(SlashPathsTest, EveryLevelOfAnAbsolutePathIsMade) {
  EXPECT_TRUE(CreateFolders("/a/b/c"));
  EXPECT_EQ(Made(disk), (Paths{"/a", "/a/b", "/a/b/c"}));
  disk.ClearLog();
  EXPECT_TRUE(CreateFolders("/a/d/"));
  EXPECT_EQ(Made(disk), Paths{"/a/d"}) << "the missing one alone";
  EXPECT_TRUE(CreateFolders("/single"));
  EXPECT_TRUE(disk.Exists("/single"));
}

TEST_F(SlashPathsTest, EveryLevelOfARelativePathIsMade) {
  EXPECT_TRUE(CreateFolders("a/b"));
  EXPECT_EQ(Made(disk), (Paths{"a", "a/b"}));
  EXPECT_TRUE(disk.Exists("/home/player/a/b"));
  EXPECT_TRUE(CreateFolders("a/c"));
  EXPECT_TRUE(CreateFolders("./d/../e"));
  EXPECT_EQ(disk.List("/home/player"), (Paths{"a", "d", "e"}));
}

TEST_F(SlashPathsTest, DoubledSlashesAreNoLevels) {
  EXPECT_TRUE(CreateFolders("//a//b//"));
  EXPECT_EQ(Made(disk), (Paths{"//a", "//a//b"}));
  EXPECT_TRUE(disk.Exists("/a/b"));
}

TEST_F(SlashPathsTest, NothingAndTheRootTouchNothing) {
  EXPECT_TRUE(CreateFolders(""));
  EXPECT_TRUE(CreateFolders("/"));
  EXPECT_TRUE(disk.Log().empty());
}

TEST_F(SlashPathsTest, ABackslashIsALetterLikeAnyOther) {
  EXPECT_TRUE(CreateFolders("/a\\b"));
  EXPECT_EQ(disk.List("/").back(), "a\\b");
}

TEST_F(SlashPathsTest, StatusIsWhatASearchFinds) {
  constexpr std::uint64_t k2001 = 126'227'808'000'000'000;
  sim.RunFor(5);
  disk.PutFile("/a", "12345", FILE_ATTRIBUTE_READONLY);
  FileStatus status;
  ASSERT_TRUE(GetFileStatus("/a", &status));
  EXPECT_EQ(status.validMask, 7u);
  EXPECT_EQ(status.size, 5u);
  EXPECT_EQ(status.attributes, FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(status.created, k2001 + 50'000);
  EXPECT_EQ(status.written, k2001 + 50'000);
  EXPECT_EQ(status.accessed, k2001 + 50'000);
  ASSERT_TRUE(GetFileStatus("/home", &status));
  EXPECT_EQ(status.attributes, FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(SlashPathsTest, NoStatusOfWhatIsNotThere) {
  FileStatus status;
  for (const std::uint64_t none : {status.created, status.accessed, status.written, status.size,
                                   std::uint64_t{status.attributes}}) {
    EXPECT_EQ(none, 0u);
  }
  status.size = 3;
  EXPECT_FALSE(GetFileStatus("/none", &status));
  EXPECT_FALSE(GetFileStatus("", &status));
  EXPECT_EQ(status.validMask, 0u);
  EXPECT_EQ(status.size, 3u);
}

TEST_F(DrivePathsTest, ProgramAndItsFolder) {
  EXPECT_EQ(Bytes(ProgramPath()), "C:\\game\\kelvaro.exe");
  EXPECT_EQ(Bytes(ProgramFolder()), "C:\\game");
  disk.SetProgramPath("");
  EXPECT_EQ(Bytes(ProgramPath()), "");
  EXPECT_EQ(Bytes(ProgramFolder()), "");
}

TEST_F(SlashPathsTest, ProgramAndItsFolder) {
  EXPECT_EQ(Bytes(ProgramPath()), "/game/kelvaro");
  EXPECT_EQ(Bytes(ProgramFolder()), "/game");
  disk.SetProgramPath("/kelvaro");
  EXPECT_EQ(Bytes(ProgramFolder()), "");
  disk.SetProgramPath("");
  EXPECT_EQ(Bytes(ProgramFolder()), "");
}

TEST_F(DrivePathsTest, APathThatDoesNotFitCountsAsNone) {
  // 3 bytes of "C:\" and 258 make 261, which fits with its terminator.
  const std::string fits = "C:\\" + std::string(128, 'f') + "\\" + std::string(129, 'f');
  const std::string tooLong = fits + "f";
  for (const std::string& folder : {fits, tooLong}) {
    disk.PutFolder(folder);
    ASSERT_TRUE(platform::files().SetCurrentDirectoryA(folder));
    EXPECT_EQ(Bytes(CurrentFolder()), folder == fits ? fits : "");
    disk.SetProgramPath(folder);
    EXPECT_EQ(Bytes(ProgramPath()), folder == fits ? fits : "");
    EXPECT_EQ(Bytes(ProgramFolder()), folder == fits ? fits.substr(0, 3 + 128) : "");
    EXPECT_EQ(ProgramPathRefusal(),
              folder == fits
                  ? ""
                  : "This program's path is too long: it has 262 bytes, and may have 261. "
                    "Move the folder to a place with a shorter path, and start the "
                    "program there.");
  }
}

TEST_F(SlashPathsTest, LongPathsAreTold) {
  const std::string folder = "/" + std::string(150, 'f') + "/" + std::string(150, 'f');
  disk.PutFolder(folder);
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA(folder));
  EXPECT_EQ(Bytes(CurrentFolder()), folder);
  disk.SetProgramPath(folder + "/kelvaro");
  EXPECT_EQ(Bytes(ProgramFolder()), folder);
}

TEST_F(SlashPathsTest, CurrentFolderThatCannotBeToldIsEmpty) {
  EXPECT_EQ(Bytes(CurrentFolder()), "/home/player");
  disk.FailOperation(1);
  EXPECT_EQ(Bytes(CurrentFolder()), "");
}

}  // namespace
}  // namespace kelvaro
