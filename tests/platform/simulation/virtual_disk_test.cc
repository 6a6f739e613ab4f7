#include "app/platform/simulation/virtual_disk.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/files_by_hand.h"

namespace platform::simulation {
namespace {

// Four changing operations: create, two writes, close.
void Save(VirtualDisk& disk, const std::string& path) {
  const std::unique_ptr<File> file = Create(disk, path);
  if (!file) return;
  Write(*file, "first ");
  Write(*file, "second");
  file->CloseHandle();
}

TEST(VirtualDisk, WritesReadsAndSeeks) {
  VirtualDisk disk;
  const std::unique_ptr<File> file = Create(disk, "/a");
  ASSERT_TRUE(file);
  WritesReadsAndSeeks(*file);
  EXPECT_EQ(disk.GetLastError(), ERROR_NEGATIVE_SEEK);
  EXPECT_TRUE(file->SetFilePointer(INT64_MAX, FILE_BEGIN, nullptr));
  EXPECT_FALSE(file->SetFilePointer(INT64_MAX, FILE_CURRENT, nullptr));
  EXPECT_FALSE(Write(*file, "far out"));
  EXPECT_EQ(disk.GetLastError(), ERROR_DISK_FULL);
  EXPECT_TRUE(file->CloseHandle());
  EXPECT_EQ(disk.FileBytes("/a"), std::string("Jello world\0\0!", 14));
}

TEST(VirtualDisk, NothingWorksOnAClosedFile) {
  VirtualDisk disk;
  const std::unique_ptr<File> file = Create(disk, "/a");
  EXPECT_TRUE(file->CloseHandle());
  std::uint32_t count = 9;
  char byte = 0;
  EXPECT_FALSE(file->ReadFile(&byte, 1, &count));
  EXPECT_EQ(count, 0u);
  EXPECT_FALSE(Write(*file, "a"));
  EXPECT_FALSE(file->SetFilePointer(0, FILE_BEGIN, nullptr));
  EXPECT_FALSE(file->CloseHandle());
  EXPECT_EQ(disk.FileBytes("/a"), "");
}

TEST(VirtualDisk, OpeningFailsForWhatIsNoFile) {
  VirtualDisk disk;
  EXPECT_FALSE(OpenToRead(disk, "/none"));
  EXPECT_EQ(disk.GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_FALSE(OpenToRead(disk, "/none/a"));
  EXPECT_EQ(disk.GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_FALSE(OpenToRead(disk, "/game"));
  EXPECT_EQ(disk.GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(OpenToRead(disk, ""));
  EXPECT_FALSE(OpenToRead(disk, std::string("/game/kelvaro\0x", 15)));
  EXPECT_EQ(disk.GetLastError(), ERROR_INVALID_NAME);
  EXPECT_FALSE(Create(disk, "/none/a"));
  EXPECT_FALSE(Create(disk, "/game"));
  EXPECT_FALSE(Create(disk, "/game/kelvaro/a"));
}

TEST(VirtualDisk, AReadOnlyFileIsNotChanged) {
  VirtualDisk disk;
  disk.PutFile("/a", "old", FILE_ATTRIBUTE_READONLY);
  disk.PutFile("/b", "new");
  EXPECT_FALSE(Create(disk, "/a"));
  EXPECT_FALSE(disk.CreateFileA("/a", GENERIC_WRITE, 0, OPEN_EXISTING));
  EXPECT_FALSE(disk.CopyFileA("/b", "/a", false));
  EXPECT_FALSE(disk.DeleteFileA("/a"));
  EXPECT_EQ(disk.FileBytes("/a"), "old");
  EXPECT_TRUE(OpenToRead(disk, "/a"));
  EXPECT_TRUE(disk.SetFileAttributesA("/a", FILE_ATTRIBUTE_NORMAL));
  EXPECT_FALSE(Write(*OpenToRead(disk, "/a"), "not opened to write"));
  EXPECT_EQ(disk.GetFileAttributesA("/a"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_TRUE(disk.CopyFileA("/b", "/a", false));
  EXPECT_TRUE(disk.SetFileAttributesA("/a", FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(disk.GetFileAttributesA("/a"), FILE_ATTRIBUTE_READONLY);
  EXPECT_EQ(disk.FileBytes("/a"), "new");
}

TEST(VirtualDisk, InAReadOnlyFolderNothingIsMadeOrDeleted) {
  VirtualDisk disk;
  disk.PutFile("/closed/a", "old");
  disk.PutFile("/b", "new");
  disk.PutFolder("/closed", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(Create(disk, "/closed/b"));
  EXPECT_EQ(disk.GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_FALSE(disk.CopyFileA("/b", "/closed/a", false));
  EXPECT_FALSE(disk.CopyFileA("/b", "/closed/b", false));
  EXPECT_FALSE(disk.DeleteFileA("/closed/a"));
  EXPECT_FALSE(disk.CreateDirectoryA("/closed/folder"));
  EXPECT_EQ(disk.List("/closed"), (std::vector<std::string>{"a"}));
  EXPECT_EQ(disk.FileBytes("/closed/a"), "old");
  // The content of a file that is there is its own matter.
  EXPECT_TRUE(Create(disk, "/closed/a"));
}

TEST(VirtualDisk, NamesComeInTheOrderOfTheirMaking) {
  VirtualDisk disk;
  disk.PutFile("/t/z", "");
  EXPECT_TRUE(disk.CreateDirectoryA("/t/m"));
  EXPECT_TRUE(Create(disk, "/t/a"));
  EXPECT_TRUE(disk.CopyFileA("/t/a", "/t/k", true));
  EXPECT_EQ(disk.List("/t"), (Names{"z", "m", "a", "k"}));
  EXPECT_EQ(Found(disk, "/t/*"), (Names{".", "..", "z", "m", "a", "k"}));
  EXPECT_TRUE(disk.DeleteFileA("/t/z"));
  disk.PutFile("/t/z", "");
  EXPECT_EQ(disk.List("/t"), (Names{"m", "a", "k", "z"}));
  EXPECT_EQ(disk.OpenHandles(), 0u);
}

TEST(VirtualDisk, ASearchFindsByPatternOrByName) {
  VirtualDisk disk;
  for (const char* name : {"/t/B.TXT", "/t/b.txt", "/t/c.dat"}) disk.PutFile(name, "");
  EXPECT_EQ(Found(disk, "/t/*.txt"), (Names{"B.TXT", "b.txt"}));
  EXPECT_EQ(Found(disk, "/t/b.txt"), Names{"b.txt"});
  EXPECT_EQ(Found(disk, "/t/C.DAT"), Names{"c.dat"});
  EXPECT_EQ(Found(disk, "/t/?"), Names{"."});
  EXPECT_EQ(Found(disk, "/t/none"), Names());
  EXPECT_EQ(disk.GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Found(disk, "/t/"), Names());
  EXPECT_EQ(Found(disk, "/none/*"), Names());
  EXPECT_EQ(disk.GetLastError(), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(Found(disk, "/t/b.txt/*"), Names());
  EXPECT_TRUE(disk.SetCurrentDirectoryA("/t"));
  EXPECT_EQ(Found(disk, "c*"), Names{"c.dat"});
}

TEST(VirtualDisk, ANameHas255BytesAtMost) {
  VirtualDisk disk;
  EXPECT_TRUE(Create(disk, "/" + std::string(255, 'a')));
  EXPECT_FALSE(Create(disk, "/" + std::string(256, 'a')));
  EXPECT_EQ(disk.GetLastError(), ERROR_INVALID_NAME);
  EXPECT_FALSE(disk.CreateDirectoryA("/" + std::string(256, 'a')));
  EXPECT_EQ(disk.GetFileAttributesA("/" + std::string(256, 'a')), INVALID_FILE_ATTRIBUTES);
}

TEST(VirtualDisk, CaseCountsWithSlashesOnly) {
  VirtualDisk disk;
  disk.PutFile("/t/a", "1");
  EXPECT_FALSE(disk.Exists("/T/A"));
  disk.Format('\\');
  disk.PutFile("C:\\t\\a", "1");
  EXPECT_EQ(disk.FileBytes("c:\\T\\A"), "1");
}

TEST(VirtualDisk, PathsAreResolved) {
  VirtualDisk disk;
  disk.PutFile("/t/a/file", "1");
  EXPECT_TRUE(disk.Exists("/t/./a//../a/file"));
  EXPECT_TRUE(disk.Exists("/../t/a/"));
  EXPECT_TRUE(disk.SetCurrentDirectoryA("/t/a"));
  EXPECT_TRUE(disk.Exists("../a/file"));
  EXPECT_FALSE(disk.SetCurrentDirectoryA("file"));
  EXPECT_FALSE(disk.SetCurrentDirectoryA("none"));
  EXPECT_EQ(disk.GetCurrentDirectoryA(), "/t/a");
  EXPECT_TRUE(disk.SetCurrentDirectoryA("/"));
  EXPECT_EQ(disk.GetCurrentDirectoryA(), "/");
}

TEST(VirtualDisk, DrivesAndSharesAreRoots) {
  VirtualDisk disk;
  disk.Format('\\');
  EXPECT_FALSE(disk.CreateDirectoryA("D:\\a"));
  EXPECT_FALSE(disk.CreateDirectoryA("C:\\"));
  disk.PutFile("\\\\srv\\share\\a", "1");
  EXPECT_TRUE(disk.Exists("\\\\SRV\\share\\A"));
  EXPECT_FALSE(disk.Exists("\\\\srv\\other\\a"));
  EXPECT_TRUE(disk.SetCurrentDirectoryA("\\\\srv\\share"));
  EXPECT_EQ(disk.GetFileAttributesA("a"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(disk.GetFileAttributesA("\\a"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_TRUE(disk.SetCurrentDirectoryA("C:\\"));
  EXPECT_EQ(disk.GetCurrentDirectoryA(), "C:\\");
}

TEST(VirtualDisk, ACopyKeepsTheTargetsAttributesAndGivesItsOwnToANewOne) {
  VirtualDisk disk;
  disk.PutFile("/ro", "1", FILE_ATTRIBUTE_READONLY);
  disk.PutFile("/b", "2");
  EXPECT_TRUE(disk.CopyFileA("/ro", "/b", false));
  EXPECT_EQ(disk.Attributes("/b"), FILE_ATTRIBUTE_NORMAL);
  EXPECT_TRUE(disk.CopyFileA("/ro", "/c", false));
  EXPECT_EQ(disk.Attributes("/c"), FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(disk.CopyFileA("/b", "/c", true));
  EXPECT_EQ(disk.GetLastError(), ERROR_FILE_EXISTS);
  EXPECT_FALSE(disk.CopyFileA("/none", "/b", false));
  EXPECT_FALSE(disk.CopyFileA("/game", "/b", false));
  EXPECT_FALSE(disk.CopyFileA("/b", "/game", false));
  EXPECT_FALSE(disk.CopyFileA("/b", "/none/b", false));
  EXPECT_EQ(disk.FileBytes("/b"), "1");
}

TEST(VirtualDisk, AnOpenFileOutlivesItsNameAndACopyOverIt) {
  VirtualDisk disk;
  disk.PutFile("/a", "old");
  disk.PutFile("/b", "new");
  const std::unique_ptr<File> file = OpenToRead(disk, "/a");
  EXPECT_TRUE(disk.CopyFileA("/b", "/a", false));
  EXPECT_EQ(ReadAll(*file), "old");
  EXPECT_EQ(disk.FileBytes("/a"), "new");
  EXPECT_TRUE(disk.DeleteFileA("/a"));
  EXPECT_TRUE(file->CloseHandle());
}

TEST(VirtualDisk, TheNthOperationFailsAndNoOther) {
  VirtualDisk disk;
  disk.PutFile("/a", "");
  disk.FailOperation(2, 42);
  EXPECT_NE(disk.GetFileAttributesA("/a"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(disk.GetFileAttributesA("/a"), INVALID_FILE_ATTRIBUTES);
  EXPECT_EQ(disk.GetLastError(), 42u);
  EXPECT_NE(disk.GetFileAttributesA("/a"), INVALID_FILE_ATTRIBUTES);
}

TEST(VirtualDisk, EveryOperationCanFail) {
  struct Opened {
    VirtualDisk disk;
    std::unique_ptr<File> file = Create(disk, "/a");
    FindData data;
    std::unique_ptr<FileSearch> search = disk.FindFirstFileA("/*", &data);
    std::uint32_t count = 0;
  };
  const struct {
    const char* name;
    bool (*works)(Opened& opened);
  } kOperations[] = {
      {"ReadFile", [](Opened& o) { return o.file->ReadFile(&o.data, 1, &o.count); }},
      {"WriteFile", [](Opened& o) { return Write(*o.file, "x"); }},
      {"SetFilePointer", [](Opened& o) { return o.file->SetFilePointer(0, FILE_BEGIN, nullptr); }},
      {"CloseHandle", [](Opened& o) { return o.file->CloseHandle(); }},
      {"FindNextFileA", [](Opened& o) { return o.search->FindNextFileA(&o.data); }},
      {"CreateFileA", [](Opened& o) { return Create(o.disk, "/new") != nullptr; }},
      {"CopyFileA", [](Opened& o) { return o.disk.CopyFileA("/b", "/new", false); }},
      {"DeleteFileA", [](Opened& o) { return o.disk.DeleteFileA("/b"); }},
      {"GetFileAttributesA", [](Opened& o) { return o.disk.GetFileAttributesA("/b") == 0x80; }},
      {"SetFileAttributesA", [](Opened& o) { return o.disk.SetFileAttributesA("/b", 1); }},
      {"CreateDirectoryA", [](Opened& o) { return o.disk.CreateDirectoryA("/new"); }},
      {"FindFirstFileA", [](Opened& o) { return !Found(o.disk, "/b").empty(); }},
      {"GetCurrentDirectoryA", [](Opened& o) { return !o.disk.GetCurrentDirectoryA().empty(); }},
      {"SetCurrentDirectoryA", [](Opened& o) { return o.disk.SetCurrentDirectoryA("/game"); }},
  };
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    Opened opened;
    VirtualDisk& disk = opened.disk;
    disk.PutFile("/b", "bytes");
    disk.ClearLog();
    disk.FailOperation(1, 77);
    EXPECT_FALSE(operation.works(opened));
    EXPECT_EQ(disk.Log().front().name, operation.name);
    EXPECT_EQ(disk.GetLastError(), 77u);
    EXPECT_EQ(disk.FileBytes("/a"), "");
    EXPECT_EQ(disk.FileBytes("/b"), "bytes");
    EXPECT_EQ(disk.Attributes("/b"), FILE_ATTRIBUTE_NORMAL);
    EXPECT_FALSE(disk.Exists("/new"));
    Opened undisturbed;
    undisturbed.disk.PutFile("/b", "bytes");
    EXPECT_TRUE(operation.works(undisturbed));
  }
}

TEST(VirtualDisk, AWriteCanFailHalfWay) {
  VirtualDisk disk;
  const std::unique_ptr<File> file = Create(disk, "/a");
  disk.FailInside(1, 4);
  std::uint32_t written = 0;
  EXPECT_FALSE(Write(*file, "123456", &written));
  EXPECT_EQ(written, 4u);
  EXPECT_EQ(disk.GetLastError(), ERROR_DISK_FULL);
  EXPECT_EQ(disk.FileBytes("/a"), "1234");
  EXPECT_TRUE(Write(*file, "78"));
  EXPECT_EQ(disk.FileBytes("/a"), "123478");
  disk.FailInside(1, 100);
  EXPECT_FALSE(Write(*file, "90", &written));
  EXPECT_EQ(written, 2u);
}

TEST(VirtualDisk, StoppingAnywhereLeavesWhatWasDoneByThen) {
  struct Row {
    std::uint64_t n;
    const char *before, *inside, *after;  // with 3 bytes put down inside
  };
  for (const Row& row : {Row{1, "old", "old", ""}, Row{2, "", "fir", "first "},
                         Row{3, "first ", "first sec", "first second"},
                         Row{4, "first second", "first second", "first second"}}) {
    for (const char* where : {"before", "inside", "after"}) {
      VirtualDisk disk;
      disk.PutFile("/a", "old");
      const std::string place = where;
      if (place == "before") disk.StopBefore(row.n);
      if (place == "inside") disk.StopInside(row.n, 3);
      if (place == "after") disk.StopAfter(row.n);
      Save(disk, "/a");
      EXPECT_TRUE(disk.IsStopped());
      EXPECT_FALSE(disk.DeleteFileA("/a"));
      EXPECT_EQ(disk.GetLastError(), ERROR_NOT_READY);
      EXPECT_FALSE(Create(disk, "/a"));
      disk.Restart();
      EXPECT_FALSE(disk.IsStopped());
      const char* const left = place == "before"   ? row.before
                               : place == "inside" ? row.inside
                                                   : row.after;
      EXPECT_EQ(disk.FileBytes("/a"), left) << place << " " << row.n;
      EXPECT_TRUE(OpenToRead(disk, "/a"));
    }
  }
}

TEST(VirtualDisk, AWriterThatDoesntShareWritingIsTheOnlyOne) {
  VirtualDisk disk;
  std::unique_ptr<File> first = Create(disk, "/a");
  ASSERT_TRUE(first);
  EXPECT_TRUE(Write(*first, "first"));
  EXPECT_FALSE(Create(disk, "/a"));
  EXPECT_EQ(disk.GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(disk.FileBytes("/a"), "first") << "not emptied";
  EXPECT_FALSE(disk.CreateFileA("/a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING));
  EXPECT_FALSE(disk.DeleteFileA("/a"));
  EXPECT_EQ(disk.GetLastError(), ERROR_SHARING_VIOLATION);
  EXPECT_TRUE(OpenToRead(disk, "/a")) << "who shares writing is let in";
  EXPECT_TRUE(disk.CopyFileA("/a", "/b", false));
  EXPECT_TRUE(Create(disk, "/b")) << "another file";
  EXPECT_TRUE(first->CloseHandle());
  EXPECT_FALSE(Create(disk, "/a")) << "until the object goes";
  first.reset();
  EXPECT_TRUE(Create(disk, "/a"));
  EXPECT_TRUE(disk.DeleteFileA("/a"));
}

TEST(VirtualDisk, ReadersThatDontShareWritingKeepWritersOutTogether) {
  VirtualDisk disk;
  disk.PutFile("/a", "old");
  const auto open = [&disk] {
    return disk.CreateFileA("/a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
  };
  std::unique_ptr<File> one = open();
  std::unique_ptr<File> two = open();
  ASSERT_TRUE(one && two);
  EXPECT_FALSE(Create(disk, "/a"));
  EXPECT_EQ(disk.FileBytes("/a"), "old");
  one.reset();
  EXPECT_FALSE(Create(disk, "/a"));
  two.reset();
  EXPECT_TRUE(Create(disk, "/a"));
}

TEST(VirtualDisk, WhatWasOpenAtTheStopKeepsNobodyOut) {
  VirtualDisk disk;
  const std::unique_ptr<File> file = Create(disk, "/a");
  disk.StopBefore(1);
  disk.Restart();
  EXPECT_TRUE(Create(disk, "/a"));
}

TEST(VirtualDisk, WhatWasOpenAtTheStopStaysUnusable) {
  VirtualDisk disk;
  const std::unique_ptr<File> file = Create(disk, "/a");
  FindData data;
  const std::unique_ptr<FileSearch> search = disk.FindFirstFileA("/*", &data);
  disk.StopBefore(1);
  EXPECT_FALSE(Write(*file, "1"));
  disk.Restart();
  EXPECT_FALSE(Write(*file, "1"));
  EXPECT_EQ(disk.GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_FALSE(search->FindNextFileA(&data));
  EXPECT_FALSE(file->CloseHandle());
  EXPECT_EQ(disk.FileBytes("/a"), "");
}

TEST(VirtualDisk, ARestartForgetsTheFaultsToCome) {
  VirtualDisk disk;
  disk.StopBefore(1);
  disk.FailOperation(2);
  disk.Restart();
  Save(disk, "/a");
  EXPECT_EQ(disk.FileBytes("/a"), "first second");
}

TEST(VirtualDisk, ACopyAtOnceIsTheOldOrTheNewAndOneInStepsCanBeCutAnywhere) {
  const struct {
    std::uint32_t step;
    void (*plan)(VirtualDisk&);
    const char* left;
  } kRows[] = {{0, [](VirtualDisk& disk) { disk.StopBefore(1); }, "old"},
               {0, [](VirtualDisk& disk) { disk.StopInside(1, 2); }, "old"},
               {0, [](VirtualDisk& disk) { disk.FailInside(1, 2); }, "old"},
               {0, [](VirtualDisk& disk) { disk.StopAfter(1); }, "the new"},
               {4, [](VirtualDisk& disk) { disk.StopBefore(1); }, "old"},
               {4, [](VirtualDisk& disk) { disk.StopAfter(1); }, ""},
               {4, [](VirtualDisk& disk) { disk.StopInside(2, 3); }, "the"},
               {4, [](VirtualDisk& disk) { disk.StopAfter(2); }, "the "},
               {4, [](VirtualDisk& disk) { disk.FailOperation(3); }, "the "},
               {4, [](VirtualDisk& disk) { disk.FailInside(3, 1); }, "the n"},
               {4, [](VirtualDisk& disk) { disk.StopAfter(3); }, "the new"}};
  for (const auto& row : kRows) {
    VirtualDisk disk;
    disk.CopyInSteps(row.step);
    disk.PutFile("/a", "the new");
    disk.PutFile("/b", "old");
    row.plan(disk);
    const bool whole = disk.CopyFileA("/a", "/b", false);
    disk.Restart();
    EXPECT_EQ(disk.FileBytes("/b"), row.left);
    EXPECT_EQ(disk.FileBytes("/a"), "the new");
    EXPECT_EQ(whole, std::string(row.left) == "the new");
  }
}

TEST(VirtualDisk, APowerCutLeavesAnyStateOfWhatIsNotLasting) {
  const std::string zeros(2, '\0');
  std::set<std::optional<std::string>> made;
  std::set<std::optional<std::string>> overwritten;
  for (std::uint32_t name = 0; name < 2; ++name) {
    for (std::uint32_t bytes = 0; bytes < 7; ++bytes) {
      VirtualDisk disk;
      disk.PutFile("/old", "1234");
      const auto file = Create(disk, "/new");
      Write(*file, "abcd");
      const auto again = Create(disk, "/old");
      Write(*again, "ab");
      bool isName = true;
      disk.CutPower([&](std::uint32_t n) {
        const std::uint32_t chosen = isName ? name : bytes % n;
        isName = false;
        return chosen;
      });
      made.insert(disk.FileBytes("/new"));
      overwritten.insert(disk.FileBytes("/old"));
      EXPECT_FALSE(Write(*file, "x")) << "opened before";
    }
  }
  EXPECT_EQ(made, (std::set<std::optional<std::string>>{std::nullopt, "", "ab", "ab" + zeros,
                                                        zeros + "cd", "abcd"}));
  EXPECT_EQ(overwritten,
            (std::set<std::optional<std::string>>{"", "1234", "a", "a" + zeros.substr(1),
                                                  zeros.substr(1) + "b", "ab", "a234"}));
}

TEST(VirtualDisk, APowerCutTakesNothingThatIsLasting) {
  VirtualDisk disk;
  disk.PutFile("/gone", "1");
  disk.PutFile("/target", "1");
  EXPECT_TRUE(disk.CreateDirectoryA("/folder"));
  const auto file = Create(disk, "/folder/new");
  Write(*file, "whole");
  EXPECT_TRUE(file->CloseHandle());
  EXPECT_TRUE(disk.CopyFileA("/folder/new", "/target", false));
  EXPECT_TRUE(disk.DeleteFileA("/gone"));
  disk.CutPower([](std::uint32_t n) {
    ADD_FAILURE() << n << " states";
    return 0;
  });
  EXPECT_EQ(disk.FileBytes("/folder/new"), "whole");
  EXPECT_EQ(disk.FileBytes("/target"), "whole");
  EXPECT_FALSE(disk.Exists("/gone"));
}

TEST(VirtualDisk, TimesAreThoseOfTheMachine) {
  Simulation sim;
  sim.RunFor(100);
  const std::unique_ptr<File> file = Create(sim.Disk(), "/a");
  sim.RunFor(50);
  EXPECT_TRUE(Write(*file, "1"));
  FindData data;
  ASSERT_TRUE(sim.Disk().FindFirstFileA("/a", &data));
  EXPECT_EQ(data.written - data.created, 500'000u);
  EXPECT_EQ(data.size, 1u);
}

}  // namespace
}  // namespace platform::simulation
