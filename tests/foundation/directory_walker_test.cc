#include "foundation/directory_walker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

using platform::FILE_ATTRIBUTE_DIRECTORY;
using platform::FILE_ATTRIBUTE_READONLY;
using platform::FILE_ATTRIBUTE_REPARSE_POINT;
using platform::simulation::Simulation;
using platform::simulation::VirtualDisk;

using Paths = std::vector<std::string>;

// Folders end in a colon.
Paths Rest(DirectoryWalker& walker) {
  Paths paths;
  WalkResult result;
  while (walker.Next(&result)) paths.push_back(Bytes(result.path) + (result.isFolder ? ":" : ""));
  return paths;
}

Paths Walk(std::uint32_t flags, const char* files, const char* folder, const char* folders,
           bool recurseAll = false) {
  DirectoryWalker walker(flags, files, folder, folders, recurseAll);
  return Rest(walker);
}

//   /t  b.txt  sub/  A.TXT  over/  c.dat
//       sub:  s.txt  deep/
//             deep:  d.txt
//       over: o.txt  s.dat
class DirectoryWalkerTest : public ::testing::Test {
 protected:
  DirectoryWalkerTest() {
    disk.PutFile("/t/b.txt", "12");
    disk.PutFile("/t/sub/s.txt", "");
    disk.PutFile("/t/sub/deep/d.txt", "123");
    disk.PutFile("/t/A.TXT", "");
    disk.PutFile("/t/over/o.txt", "");
    disk.PutFile("/t/over/s.dat", "");
    disk.PutFile("/t/c.dat", "");
  }

  Simulation sim;
  VirtualDisk& disk = sim.Disk();
};

TEST_F(DirectoryWalkerTest, WithoutRecursionSubfoldersAreNotLookedAt) {
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "/t", "*"),
            (Paths{"/t/b.txt", "/t/A.TXT", "/t/c.dat"}));
  EXPECT_EQ(disk.Count("FindFirstFileA"), 1u);
  EXPECT_EQ(disk.Log().front().path, "/t/*");
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(DirectoryWalkerTest, DotAndDotDotAreNeverReported) {
  for (const char* pattern : {"*", ".*", "?", "..", "."}) {
    for (const char* other : {"*", "."}) {
      for (const std::string& path :
           Walk(WalkFiles | WalkFolders | WalkRecursive, pattern, "/t", other)) {
        EXPECT_EQ(path.find("./"), std::string::npos) << path;
        EXPECT_NE(path, ".:");
        EXPECT_NE(path, "..:");
      }
    }
  }
  EXPECT_EQ(Walk(WalkFolders, "", "/t", ".*"), Paths());
}

TEST_F(DirectoryWalkerTest, FilesComeFirstThenEachFolderAndWhatIsInIt) {
  EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive, "*", "/t", "*"),
            (Paths{"b.txt", "A.TXT", "c.dat", "sub:", "sub/s.txt", "sub/deep:", "sub/deep/d.txt",
                   "over:", "over/o.txt", "over/s.dat"}));
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(DirectoryWalkerTest, FullPathsOnEveryLevel) {
  EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive | WalkFullPaths, "*", "/t/", "*"),
            (Paths{"/t/b.txt", "/t/A.TXT", "/t/c.dat", "/t/sub:", "/t/sub/s.txt", "/t/sub/deep:",
                   "/t/sub/deep/d.txt", "/t/over:", "/t/over/o.txt", "/t/over/s.dat"}));
}

TEST_F(DirectoryWalkerTest, RecursionWithoutFoldersReportsFilesOnly) {
  EXPECT_EQ(Walk(WalkFiles | WalkRecursive, "", "/t", nullptr),
            (Paths{"b.txt", "A.TXT", "c.dat", "sub/s.txt", "sub/deep/d.txt", "over/o.txt",
                   "over/s.dat"}));
}

TEST_F(DirectoryWalkerTest, FoldersWithoutRecursionAreThoseOfTheStartFolder) {
  EXPECT_EQ(Walk(WalkFolders, "*.txt", "/t", "*"), (Paths{"sub:", "over:"}));
  EXPECT_EQ(disk.Count("FindFirstFileA"), 1u);
}

TEST_F(DirectoryWalkerTest, WithoutFilesTheFolderPatternServesBoth) {
  EXPECT_EQ(Walk(WalkFolders | WalkRecursive, "nothing", "/t", "*e*"), (Paths{"over:"}));
  EXPECT_EQ(Walk(WalkFolders | WalkRecursive, "nothing", "/t", "*"),
            (Paths{"sub:", "sub/deep:", "over:"}));
}

TEST_F(DirectoryWalkerTest, EqualPatternsAreOneScanAFolder) {
  EXPECT_EQ(Walk(WalkFiles | WalkRecursive, "*", "/t", "*").size(), 7u);
  EXPECT_EQ(disk.Count("FindFirstFileA"), 4u);  // of t, sub, deep and over
}

TEST_F(DirectoryWalkerTest, PatternsThatDifferByCaseAreEqual) {
  EXPECT_EQ(Walk(WalkFiles | WalkFolders, "*B*", "/t", "*b*"), (Paths{"b.txt", "sub:"}));
  EXPECT_EQ(disk.Count("FindFirstFileA"), 1u);
}

TEST_F(DirectoryWalkerTest, DifferentPatternsChooseFilesAndFoldersApart) {
  EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive, "*.txt", "/t", "s*"),
            (Paths{"b.txt", "A.TXT", "sub:", "sub/s.txt"}));
  EXPECT_EQ(disk.Count("FindFirstFileA"), 4u);  // two each of t and sub
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(DirectoryWalkerTest, RecurseAllEntersEveryFolderBelowTheFirstLevel) {
  EXPECT_EQ(Walk(WalkFiles | WalkRecursive, "*.txt", "/t", "s*", true),
            (Paths{"b.txt", "A.TXT", "sub/s.txt", "sub/deep/d.txt"}));
}

TEST_F(DirectoryWalkerTest, AFilePatternWithoutAMatchDoesNotEndTheWalk) {
  EXPECT_EQ(Walk(WalkFiles | WalkRecursive, "d.*", "/t", "*"), (Paths{"sub/deep/d.txt"}));
}

TEST_F(DirectoryWalkerTest, StatusComesWhenAskedFor) {
  disk.PutFile("/u/file", "12345", FILE_ATTRIBUTE_READONLY);
  disk.PutFile("/u/folder/inner", "1");
  DirectoryWalker walker(WalkFiles | WalkFolders | WalkRecursive | WalkStatus, "*", "/u", "*",
                         false);
  WalkResult result;
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_TRUE(result.hasStatus);
  EXPECT_EQ(result.status.validMask, 7u);
  EXPECT_EQ(result.status.size, 5u);
  EXPECT_EQ(result.status.attributes, FILE_ATTRIBUTE_READONLY);
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_TRUE(result.isFolder);
  EXPECT_TRUE(result.hasStatus);
  EXPECT_EQ(result.status.attributes, FILE_ATTRIBUTE_DIRECTORY);
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_FALSE(result.isFolder);
  EXPECT_EQ(Bytes(result.path), "folder/inner");
  EXPECT_EQ(result.status.size, 1u);
  EXPECT_FALSE(walker.Next(&result));
}

TEST_F(DirectoryWalkerTest, WithoutStatusNothingIsAsked) {
  DirectoryWalker walker(WalkFiles, "*", "/t", "*", false);
  WalkResult result;
  result.hasStatus = true;
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_FALSE(result.hasStatus);
  EXPECT_EQ(disk.Count("FindFirstFileA"), 1u);
}

TEST_F(DirectoryWalkerTest, AFileThatGoesBeforeItsStatusIsReportedWithout) {
  DirectoryWalker walker(WalkFiles | WalkStatus, "*", "/t", "*", false);
  disk.FailOperation(4);  // behind ".", ".." and the file: the search for its status
  WalkResult result;
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_EQ(Bytes(result.path), "b.txt");
  EXPECT_FALSE(result.hasStatus);
}

TEST_F(DirectoryWalkerTest, AnUnreadableFolderCountsAsEmpty) {
  DirectoryWalker walker(WalkFiles | WalkFolders | WalkRecursive, "*", "/t", "*", false);
  WalkResult result;
  do {
    ASSERT_TRUE(walker.Next(&result));
  } while (Bytes(result.path) != "sub");
  disk.FailOperation(1);
  EXPECT_EQ(Rest(walker), (Paths{"over:", "over/o.txt", "over/s.dat"}));
}

TEST_F(DirectoryWalkerTest, AFolderThatVanishesEndsItsBranch) {
  DirectoryWalker walker(WalkFiles | WalkRecursive, "*", "/t", "*", false);
  WalkResult result;
  do {
    ASSERT_TRUE(walker.Next(&result));
  } while (Bytes(result.path) != "sub/s.txt");
  disk.Remove("/t/sub");
  EXPECT_EQ(Rest(walker), (Paths{"over/o.txt", "over/s.dat"}));
}

TEST_F(DirectoryWalkerTest, AMissingOrEmptyFolderHasNothing) {
  disk.PutFolder("/empty");
  EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive, "*", "/empty", "*"), Paths());
  EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive, "*", "/none", "*"), Paths());
  EXPECT_EQ(Walk(WalkFiles, "*.txt", "/t/b.txt", "*"), Paths());
}

TEST_F(DirectoryWalkerTest, OnceEndedItStaysEnded) {
  for (const std::uint32_t flags : {WalkFiles, WalkFiles | WalkRecursive, WalkFolders}) {
    for (const char* files : {"*", "*.txt", "none"}) {
      DirectoryWalker walker(flags, files, "/t", "*", false);
      Rest(walker);
      disk.ClearLog();
      WalkResult result;
      EXPECT_FALSE(walker.Next(&result));
      EXPECT_FALSE(walker.Next(&result));
      EXPECT_TRUE(disk.Log().empty()) << flags << " " << files;
    }
  }
}

TEST_F(DirectoryWalkerTest, WithNeitherFilesNorFoldersNothingBegins) {
  DirectoryWalker walker;
  WalkResult result;
  EXPECT_FALSE(walker.Next(&result));
  EXPECT_FALSE(walker.Start(0, "*", "/t", "*", false));
  EXPECT_FALSE(walker.Start(WalkRecursive | WalkStatus | WalkFullPaths, "*", "/t", "*", true));
  EXPECT_FALSE(walker.Next(&result));
  EXPECT_TRUE(disk.Log().empty());
}

TEST_F(DirectoryWalkerTest, FlagsOfZeroKeepTheOldOnes) {
  DirectoryWalker walker(WalkFolders | WalkFullPaths, "*", "/t/over", "*", false);
  EXPECT_EQ(Rest(walker), Paths());
  EXPECT_TRUE(walker.Start(0, "*", "/t", "*", false));
  EXPECT_EQ(Rest(walker), (Paths{"/t/sub:", "/t/over:"}));
}

TEST_F(DirectoryWalkerTest, AWalkThatEndedCanBeStartedAgain) {
  DirectoryWalker walker(WalkFiles, "*", "/t/over", "*", false);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Rest(walker), (Paths{"o.txt", "s.dat"}));
    EXPECT_TRUE(walker.Start(WalkFiles, "*", "/t/over", "*", false));
  }
}

TEST_F(DirectoryWalkerTest, AStartForgetsTheFoldersThatWereToCome) {
  DirectoryWalker walker(WalkFolders, "*", "/t", "*", false);
  WalkResult result;
  ASSERT_TRUE(walker.Next(&result));
  EXPECT_TRUE(walker.Start(WalkFolders, "*", "/t/sub", "*", false));
  EXPECT_EQ(Rest(walker), Paths{"deep:"});
}

TEST_F(DirectoryWalkerTest, AStartEndsTheWalkUnderWay) {
  DirectoryWalker walker(WalkFiles | WalkRecursive, "*", "/t", "*", false);
  WalkResult result;
  do {
    ASSERT_TRUE(walker.Next(&result));
  } while (Bytes(result.path) != "sub/s.txt");
  EXPECT_TRUE(walker.Start(WalkFiles, "*", "/t/over", "*", false));
  EXPECT_EQ(disk.OpenHandles(), 0u);
  EXPECT_EQ(Rest(walker), (Paths{"o.txt", "s.dat"}));
}

TEST_F(DirectoryWalkerTest, StopEndsItAndGivesEverythingBack) {
  for (const char* folders : {"*", "s*"}) {
    DirectoryWalker walker(WalkFiles | WalkRecursive, "*", "/t", folders, false);
    WalkResult result;
    do {
      ASSERT_TRUE(walker.Next(&result));
    } while (Bytes(result.path) != "sub/s.txt");
    EXPECT_GE(disk.OpenHandles(), 1u);
    walker.Stop();
    EXPECT_EQ(disk.OpenHandles(), 0u);
    EXPECT_FALSE(walker.Next(&result));
  }
}

TEST_F(DirectoryWalkerTest, ItsEndGivesEverythingBack) {
  {
    DirectoryWalker walker(WalkFiles, "*", "/t", "*", false);
    WalkResult result;
    ASSERT_TRUE(walker.Next(&result));
    EXPECT_EQ(disk.OpenHandles(), 1u);
  }
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST_F(DirectoryWalkerTest, NoFolderIsTheCurrentOne) {
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("/t/over"));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "", "*"),
            (Paths{"/t/over/o.txt", "/t/over/s.dat"}));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", nullptr, "*").size(), 2u);
}

TEST_F(DirectoryWalkerTest, AFolderThatBeginsWithADotIsMadeAbsolute) {
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("/t/over"));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "s*", ".", "*"), (Paths{"/t/over/s.dat"}));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "b*", "..", "*"), (Paths{"/t/b.txt"}));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "../sub", "*"), (Paths{"/t/sub/s.txt"}));
  EXPECT_EQ(platform::files().GetCurrentDirectoryA(), "/t/over");
}

TEST_F(DirectoryWalkerTest, AnotherRelativeFolderIsTakenAsItIs) {
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("/t"));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "over", "*"), (Paths{"over/o.txt", "over/s.dat"}));
  EXPECT_EQ(disk.Count("SetCurrentDirectoryA"), 1u);
}

TEST_F(DirectoryWalkerTest, AFolderThatCannotBeMadeAbsoluteStandsAsItIs) {
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("/t/sub"));
  disk.FailOperation(2);  // behind GetCurrentDirectoryA
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "b*", "..", "*"), (Paths{"../b.txt"}));
  EXPECT_EQ(platform::files().GetCurrentDirectoryA(), "/t/sub");
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "./none", "*"), Paths());
  EXPECT_EQ(platform::files().GetCurrentDirectoryA(), "/t/sub");
  disk.FailOperation(3);  // the current folder of the new place
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "b*", "..", "*"), (Paths{"../b.txt"}));
  EXPECT_EQ(platform::files().GetCurrentDirectoryA(), "/t/sub");
}

TEST_F(DirectoryWalkerTest, AColonAtTheEndGetsASeparatorBeforeTheFolderIsEntered) {
  disk.PutFile("/t/.x:/file", "");
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("/t"));
  disk.ClearLog();
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", ".x:", "*"), (Paths{"/t/.x:/file"}));
  EXPECT_EQ(disk.Log()[1].name, "SetCurrentDirectoryA");
  EXPECT_EQ(disk.Log()[1].path, ".x:/");
}

TEST_F(DirectoryWalkerTest, ALinkToAFolderIsReportedAndNotEntered) {
  disk.PutFile("/v/link/file", "");
  disk.PutFolder("/v/link", FILE_ATTRIBUTE_REPARSE_POINT);
  disk.PutFile("/v/real/file", "");
  for (const char* folders : {"*", "*?"}) {
    EXPECT_EQ(Walk(WalkFiles | WalkFolders | WalkRecursive, "*", "/v", folders),
              (Paths{"link:", "real:", "real/file"}));
  }
}

TEST(DirectoryWalker, WorksWithBackslashes) {
  Simulation sim;
  VirtualDisk& disk = sim.Disk();
  disk.Format('\\');
  disk.PutFile("C:\\t\\a.txt", "");
  disk.PutFile("C:\\t\\sub\\b.TXT", "");
  disk.PutFile("C:\\t\\sub\\deep\\c.txt", "");
  const std::uint32_t all = WalkFiles | WalkFolders | WalkRecursive;
  EXPECT_EQ(Walk(all, "*.txt", "C:\\t", "*"),
            (Paths{"a.txt", "sub:", "sub\\b.TXT", "sub\\deep:", "sub\\deep\\c.txt"}));
  EXPECT_EQ(Walk(all | WalkFullPaths, "*.txt", "c:\\T\\", "*"),
            (Paths{"c:\\T\\a.txt", "c:\\T\\sub:", "c:\\T\\sub\\b.TXT",
                   "c:\\T\\sub\\deep:", "c:\\T\\sub\\deep\\c.txt"}));
  ASSERT_TRUE(platform::files().SetCurrentDirectoryA("C:\\t\\sub"));
  EXPECT_EQ(Walk(WalkFiles | WalkFullPaths, "*", "..", "*"), (Paths{"C:\\t\\a.txt"}));
}

}  // namespace
}  // namespace kelvaro
