#include "storage/profile_library.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/foundation/texts.h"
#include "tests/storage/profile_bytes.h"

namespace kelvaro {
namespace {

using Strings = std::vector<std::string>;

class ProfileLibraryTest : public ProfileTest {
 protected:
  void Put(const std::string& fileName, const std::string& profileName) {
    Disk().PutFile(PathOf(fileName), SmallProfile(profileName));
  }
  Strings Names() {
    LinkedList<ByteString> list;
    EXPECT_TRUE(profile.ListProfileNames(&list));
    return Texts(list);
  }
  Strings Files() {
    LinkedList<ByteString> list;
    EXPECT_TRUE(profile.ListProfileFiles(&list));
    return Texts(list);
  }
  std::string Find(const std::string& name) { return Bytes(profile.FindProfileFile(TextOf(name))); }

  ProfileFile profile;
};

TEST(ProfileFileName, KeepsPrintableAsciiThatAFileNameMayHold) {
  struct {
    std::string name;
    std::string fileName;
  } const kRows[] = {
      {"Race", "Race.idprof"},
      {"Race: 1/2", "Race 12.idprof"},
      {"???", ""},
      {"", ""},
      {"\xC4\xD6\xDC", ""},
      {"\\/*?\"<>|:", ""},
      {"a\\b/c*d?e\"f<g>h|i:j", "abcdefghij.idprof"},
      {std::string("\x00\x1F\x20\x7E\x7F\x80\xFF", 7), " ~.idprof"},
      {"  two blanks and a dot. ", "  two blanks and a dot. .idprof"},
      {"CON", "CON.idprof"},
      {"A:B", "AB.idprof"},
      {"AB", "AB.idprof"},
      {"../../etc/passwd", "....etcpasswd.idprof"},
      {"C:\\boot", "Cboot.idprof"},
      {std::string("x.idprof\0/", 10), "x.idprof.idprof"},
      {"..", "...idprof"},
      {"x.idprof", "x.idprof.idprof"},
      {"lower UPPER", "lower UPPER.idprof"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(Bytes(ProfileFile::ProfileFileName(TextOf(row.name))), row.fileName) << row.name;
  }
}

TEST_F(ProfileLibraryTest, TheFolderIsThatOfTheProgramsFile) {
  EXPECT_EQ(Bytes(ProfileFile::ProfileFolder()), "/game/Profiles");
  Disk().Format('\\');
  EXPECT_EQ(Bytes(ProfileFile::ProfileFolder()), "C:\\game\\Profiles");
  Disk().SetProgramPath("D:\\kelvaro.exe");
  EXPECT_EQ(Bytes(ProfileFile::ProfileFolder()), "D:\\Profiles");
}

TEST_F(ProfileLibraryTest, ASaveMakesTheFolderAndNamesTheFile) {
  EXPECT_FALSE(Disk().Exists(kFolder));
  profile.profileName = "Race: 1/2";
  EXPECT_TRUE(profile.Save());
  EXPECT_EQ(Disk().List(kFolder), Strings{"Race 12.idprof"});
  EXPECT_EQ(Names(), Strings{"Race: 1/2"});
  EXPECT_EQ(Find("Race: 1/2"), PathOf("Race 12.idprof"));
}

TEST_F(ProfileLibraryTest, ASaveGoesBelowTheProgramOnADiskWithDrivesToo) {
  Disk().Format('\\');
  profile.profileName = "Race";
  ASSERT_TRUE(profile.Save());
  EXPECT_TRUE(Disk().Exists("C:\\game\\Profiles\\Race.idprof"));
  EXPECT_EQ(Files(), Strings{"C:\\game\\Profiles\\Race.idprof"});
  EXPECT_EQ(Find("Race"), "C:\\game\\Profiles\\Race.idprof");
  EXPECT_TRUE(profile.DeleteProfileFile());
  EXPECT_EQ(Files(), Strings{});
}

TEST_F(ProfileLibraryTest, OfTwoFilesWithOneNameBothAreListedAndTheFirstOneFound) {
  Put("b.idprof", "same");
  Put("a.idprof", "same");
  EXPECT_EQ(Names(), (Strings{"same", "same"}));
  EXPECT_EQ(Find("same"), PathOf("b.idprof"));
}

TEST_F(ProfileLibraryTest, NamesAreFoundWithCaseAndInFullLength) {
  Put("1.idprof", "ABC");
  EXPECT_EQ(Names(), Strings{"ABC"});
  EXPECT_EQ(Find("1"), "") << "the stored name counts";
  Put("2.idprof", std::string("zero\0byte", 9));
  EXPECT_EQ(Find("abc"), "");
  EXPECT_EQ(Find("AB"), "");
  EXPECT_EQ(Find("ABCD"), "");
  EXPECT_EQ(Find("ABC"), PathOf("1.idprof"));
  EXPECT_EQ(Find("zero"), "");
  EXPECT_EQ(Find(std::string("zero\0byte", 9)), PathOf("2.idprof"));
}

// Whatever of a rename to "new" failed, so that the old bytes may still lie beside the new file.
TEST_F(ProfileLibraryTest, WhatARenameLeftGoesWithTheNewProfile) {
  const auto rename = [this](const char* from, const char* to) {
    ProfileFile old;
    const bool isGoing = old.BeginRename(from, to);
    EXPECT_EQ(isGoing, !Disk().Exists(PathOf(std::string(from) + ".idprof")));
    EXPECT_EQ(isGoing, Disk().Exists(PathOf(std::string(to) + ".idprof.was")));
    Put(std::string(to) + ".idprof", to);
    if (isGoing) old.EndRename();
  };
  for (const bool isDeleted : {true, false}) {
    std::uint64_t failing = 1;
    std::uint32_t left = 0;
    for (bool isAll = false; !isAll; ++failing) {
      SCOPED_TRACE(failing);
      Put("old.idprof", "old");
      Disk().ClearLog();
      Disk().FailOperation(failing);
      rename("old", "new");
      isAll = Disk().Log().size() < failing;
      Disk().Restart();
      const bool isOldThere = Disk().Exists(PathOf("old.idprof"));
      left += Disk().Exists(PathOf("new.idprof.was")) ? 1 : 0;
      profile.profileName = "new";
      if (isDeleted) {
        EXPECT_TRUE(profile.DeleteProfileFile());
      } else {
        rename("new", "newer");
      }
      EXPECT_FALSE(Disk().Exists(PathOf("new.idprof")));
      Names();  // brings back what there is to bring back
      EXPECT_EQ(Disk().Exists(PathOf("old.idprof")), isOldThere);
      for (const std::string& file : Disk().List(kFolder)) Disk().Remove(PathOf(file));
    }
    EXPECT_GE(left, 1u) << "none of the failures left anything";
  }
}

TEST_F(ProfileLibraryTest, ARenameKeepsTheOldBytesUntilItsEnd) {
  Put("old.idprof", "old");
  Disk().PutFile(PathOf("new.idprof.was"), "left by a rename before");
  ASSERT_TRUE(profile.BeginRename("old", "new"));
  EXPECT_EQ(Disk().List(kFolder), Strings{"new.idprof.was"});
  EXPECT_EQ(Disk().FileBytes(PathOf("new.idprof.was")), SmallProfile("old"));
  // Nobody else brings it back meanwhile.
  Disk().ClearLog();
  EXPECT_EQ(Find("old"), "");
  EXPECT_EQ(Disk().Count("FindFirstFileA"), 2u) << "profiles, and what renames have left";
  profile.EndRename();
  EXPECT_EQ(Disk().List(kFolder), Strings{});
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

TEST_F(ProfileLibraryTest, WhatCantBeDeletedOrIsntThereIsNotRenamed) {
  Disk().PutFile(PathOf("old.idprof"), SmallProfile("old"), platform::FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(profile.BeginRename("old", "new"));
  EXPECT_FALSE(profile.BeginRename("none", "new"));
  EXPECT_EQ(Disk().Count("CopyFileA"), 0u);
}

TEST_F(ProfileLibraryTest, AProfileOfARenameThatWasCutOffIsFoundByItsName) {
  Disk().PutFile(PathOf("new.idprof.was"), SmallProfile("old"));
  EXPECT_EQ(Find("old"), PathOf("old.idprof"));
  EXPECT_EQ(Disk().List(kFolder), Strings{"old.idprof"});
}

TEST_F(ProfileLibraryTest, WhatARenameKeptWaitsForAProfileThatTookItsName) {
  Put("old.idprof", "of somebody else");
  Disk().PutFile(PathOf("new.idprof.was"), SmallProfile("old"));
  EXPECT_EQ(Names(), Strings{"of somebody else"});
  EXPECT_EQ(Disk().List(kFolder), (Strings{"old.idprof", "new.idprof.was"}));
  Disk().Remove(PathOf("old.idprof"));
  EXPECT_EQ(Names(), Strings{"old"});
  EXPECT_EQ(Disk().List(kFolder), Strings{"old.idprof"});
}

TEST_F(ProfileLibraryTest, ARenameThatWasCutOffBeforeTheOldFileWentLeavesThatAlone) {
  Put("old.idprof", "old");
  Disk().PutFile(PathOf("new.idprof.was"), SmallProfile("old"));
  EXPECT_EQ(Names(), Strings{"old"});
  EXPECT_EQ(Disk().List(kFolder), Strings{"old.idprof"});
}

TEST_F(ProfileLibraryTest, EachFileIsReadOnceForANameThatIsntThere) {
  Put("new.idprof", "new");
  Disk().PutFile(PathOf("new.idprof.was"), SmallProfile("old"));
  EXPECT_EQ(Find("none"), "");
  EXPECT_EQ(Disk().Count("ReadFile"), 2u);
  EXPECT_EQ(Disk().List(kFolder), Strings{"new.idprof"});
}

TEST_F(ProfileLibraryTest, FilesAreListedInTheOrderOfTheFileSystemWithFullPaths) {
  Put("c.idprof", "3");
  Put("a.IDPROF", "1");
  Put("b.idprof", "2");
  Disk().PutFile(PathOf("notes.txt"), "not a profile");
  Disk().PutFile(PathOf("d.idprof.tmp"), SmallProfile("4"));
  Disk().PutFolder(PathOf("folder.idprof"));
  Disk().PutFile(PathOf("deeper/e.idprof"), SmallProfile("5"));
  EXPECT_EQ(Files(), (Strings{PathOf("c.idprof"), PathOf("a.IDPROF"), PathOf("b.idprof")}));
  EXPECT_EQ(Names(), (Strings{"3", "1", "2"}));
}

TEST_F(ProfileLibraryTest, ForeignUnreadableAndNamelessFilesAreLeftOutWithoutAWord) {
  Put("good.idprof", "good");
  Disk().PutFile(PathOf("magic.idprof"), Container({TypeList(), NameList("foreign")}));
  Disk().PutFile(PathOf("type.idprof"),
                 ProfileBytes({List(1, {Field("Letter")}), NameList("letter")}));
  Put("nameless.idprof", "");
  Disk().PutFile(PathOf("nothing.idprof"), "");
  Disk().PutFile(PathOf("text.idprof"), "just a text");
  EXPECT_EQ(Files().size(), 6u);
  EXPECT_EQ(Names(), Strings{"good"});
  EXPECT_EQ(Find(""), PathOf("magic.idprof")) << "no name is what the first of these has";
}

TEST_F(ProfileLibraryTest, AnEmptyFileIsListedOnceItsTemporaryBringsItBack) {
  Disk().PutFile(PathOf("a.idprof"), "");
  EXPECT_EQ(Names(), Strings{});
  Disk().PutFile(PathOf("a.idprof.tmp"), SmallProfile("back"));
  EXPECT_EQ(Names(), Strings{"back"});
  EXPECT_EQ(Disk().List(kFolder), Strings{"a.idprof"});
  EXPECT_EQ(*Disk().FileBytes(PathOf("a.idprof")), SmallProfile("back"));
}

TEST_F(ProfileLibraryTest, AMissingAndAnEmptyFolderListAsEmpty) {
  EXPECT_EQ(Files(), Strings{});
  EXPECT_EQ(Names(), Strings{});
  EXPECT_EQ(Find("a"), "");
  Disk().PutFolder(kFolder);
  EXPECT_EQ(Files(), Strings{});
  EXPECT_EQ(Names(), Strings{});
  Disk().Remove(kFolder);
  Disk().PutFile(kFolder, "a file in its place");
  EXPECT_EQ(Files(), Strings{});
}

TEST_F(ProfileLibraryTest, ListsAreReplacedAndNotAddedTo) {
  Put("a.idprof", "a");
  LinkedList<ByteString> list;
  list.AddTail("left over");
  profile.ListProfileNames(&list);
  EXPECT_EQ(Texts(list), Strings{"a"});
  list.AddTail("left over");
  profile.ListProfileFiles(&list);
  EXPECT_EQ(Texts(list), Strings{PathOf("a.idprof")});
}

TEST_F(ProfileLibraryTest, FilesPutInAndTakenOutByHandAreSeenAtOnce) {
  Put("a.idprof", "a");
  EXPECT_EQ(Names(), Strings{"a"});
  Put("b.idprof", "b");
  EXPECT_EQ(Names(), (Strings{"a", "b"}));
  Disk().Remove(PathOf("a.idprof"));
  EXPECT_EQ(Names(), Strings{"b"});
}

TEST_F(ProfileLibraryTest, DeletingGoesByTheStoredName) {
  Put("x.idprof", "y");
  Put("y.idprof", "x");
  Disk().PutFile(PathOf("x.idprof.tmp"), "left");
  profile.profileName = "y";
  EXPECT_TRUE(profile.DeleteProfileFile());
  EXPECT_EQ(Disk().List(kFolder), (Strings{"y.idprof", "x.idprof.tmp"}));
  EXPECT_FALSE(profile.DeleteProfileFile()) << "there is none any more";
  EXPECT_EQ(Bytes(profile.profileName), "y");
}

TEST_F(ProfileLibraryTest, DeletingWithoutANameDeletesNothing) {
  Put("nameless.idprof", "");
  EXPECT_FALSE(profile.DeleteProfileFile());
  EXPECT_TRUE(Disk().Exists(PathOf("nameless.idprof")));
}

TEST_F(ProfileLibraryTest, AReadOnlyFileIsNotDeleted) {
  Disk().PutFile(PathOf("a.idprof"), SmallProfile("a"), platform::FILE_ATTRIBUTE_READONLY);
  profile.profileName = "a";
  EXPECT_FALSE(profile.DeleteProfileFile());
  EXPECT_TRUE(Disk().Exists(PathOf("a.idprof")));
  EXPECT_NE(Disk().Attributes(PathOf("a.idprof")) & platform::FILE_ATTRIBUTE_READONLY, 0u);
}

TEST_F(ProfileLibraryTest, SavingAFileOfAnIrregularNameMakesASecondOne) {
  Put("renamed by hand.idprof", "a");
  ASSERT_TRUE(profile.Load(TextOf(Find("a"))));
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Names(), (Strings{"a", "a"}));
  EXPECT_TRUE(Disk().Exists(PathOf("a.idprof")));
}

TEST_F(ProfileLibraryTest, TheLongestNameIsTheLongestThatCanBeSaved) {
  ProfileFile longest;
  longest.profileName = TextOf(std::string(ProfileFile::kLongestName, 'n'));
  EXPECT_FALSE(ProfileFile::IsTooLong(ProfileFile::ProfileFileName(longest.profileName)));
  EXPECT_TRUE(longest.Save());
  longest.profileName.AppendChar('n');
  EXPECT_TRUE(ProfileFile::IsTooLong(ProfileFile::ProfileFileName(longest.profileName)));
  EXPECT_FALSE(longest.Save());
  // What doesn't reach the file name doesn't count.
  longest.profileName = TextOf(std::string(ProfileFile::kLongestName, 'n') + "?\xE4");
  EXPECT_FALSE(ProfileFile::IsTooLong(ProfileFile::ProfileFileName(longest.profileName)));
  EXPECT_TRUE(longest.Save());
}

TEST_F(ProfileLibraryTest, WhatTheSystemHasForADeviceIsNoProfile) {
  Disk().Format('\\');
  struct {
    const char* name;
    bool isTaken;
  } const kCases[] = {
      {"CON", true},   {"con", true},    {"NUL.x", true},        {"Aux  .y", true},
      {"prn", true},   {"COM1", true},   {"lpt9.profile", true}, {"COM0", false},
      {"CONS", false}, {"x CON", false}, {"COM10", false},       {"COM", false},
      {"a.", false},   {"a ", false},    {"a:b", false},
  };
  for (const auto& c : kCases) {
    ProfileFile named;
    named.profileName = TextOf(c.name);
    EXPECT_EQ(ProfileFile::IsTakenBySystem(ProfileFile::ProfileFileName(named.profileName)),
              c.isTaken)
        << c.name;
    EXPECT_EQ(named.Save(), !c.isTaken) << c.name;
    EXPECT_EQ(named.FindProfileFile(named.profileName).IsEmpty(), c.isTaken) << c.name;
  }
}

TEST_F(ProfileLibraryTest, ListingReadsEachFileOnceAndLeavesTheLoadedProfileAlone) {
  ASSERT_TRUE(LoadBytes(&profile, SmallProfile("loaded")));
  for (const char* name : {"1", "2", "3"}) Put(std::string(name) + ".idprof", name);
  Disk().ClearLog();
  EXPECT_EQ(Names().size(), 3u);
  EXPECT_EQ(Disk().Count("CreateFileA"), 3u);
  EXPECT_EQ(Disk().Count("ReadFile"), 3u);
  EXPECT_EQ(Disk().Count("CloseHandle"), 3u);
  EXPECT_EQ(Bytes(profile.profileName), "loaded");
  EXPECT_EQ(Disk().OpenHandles(), 0u);
}

}  // namespace
}  // namespace kelvaro
