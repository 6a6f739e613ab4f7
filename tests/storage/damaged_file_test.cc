// A profile file that can't be read whole and loads all the same: what couldn't be read is
// still there after the profile has been saved over it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/binary_file.h"
#include "tests/platform/watched_files.h"
#include "tests/storage/profile_bytes.h"
#include "tests/storage/random_profile.h"

namespace kelvaro {
namespace {

using Strings = std::vector<std::string>;

class DamagedFileTest : public ProfileTest {
 protected:
  void SetUp() override {
    ProfileFile profile;
    RandomProfile(7).Fill(&profile, "P", 3);
    ASSERT_TRUE(profile.Save());
    whole = On("P.idprof");
    cut = whole.substr(0, whole.size() * 4 / 10);
  }

  std::string On(const std::string& fileName) {
    return Disk().FileBytes(PathOf(fileName)).value_or("(no file)");
  }
  void Put(const std::string& fileName, const std::string& bytes) {
    Disk().PutFile(PathOf(fileName), bytes);
  }
  Strings Files() { return Disk().List(kFolder); }
  // Loads what lies at P.idprof and saves it.
  bool LoadAndSave() {
    ProfileFile profile;
    EXPECT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
    return profile.Save();
  }

  std::string whole;
  std::string cut;
};

TEST_F(DamagedFileTest, ACutFileIsKeptBeforeTheFirstSaveOverIt) {
  Put("P.idprof", cut);
  ProfileFile profile;
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  EXPECT_EQ(profile.controls.count, 0);
  EXPECT_EQ(Bytes(profile.DamagedFile()), PathOf("P.idprof"));
  EXPECT_EQ(Files(), Strings{"P.idprof"}) << "not by the load";
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(On("P.idprof.damaged"), cut);
  EXPECT_NE(On("P.idprof"), cut);
  EXPECT_TRUE(profile.DamagedFile().IsEmpty());
  profile.pollInterval = 77;
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Files(), (Strings{"P.idprof", "P.idprof.damaged"})) << "the next one is of a good file";
}

TEST_F(DamagedFileTest, WhereverAFileIsCutItsBytesAreInTheFolderAfterASave) {
  for (std::size_t n = 0; n < whole.size(); ++n) {
    Disk().Remove(kFolder);
    Put("P.idprof", whole.substr(0, n));
    ProfileFile profile;
    if (!profile.Load(TextOf(PathOf("P.idprof")))) continue;
    ASSERT_TRUE(profile.Save()) << n;
    EXPECT_EQ(On("P.idprof.damaged"), whole.substr(0, n));
  }
}

TEST_F(DamagedFileTest, AFileWithAListThatCantBeEnteredIsKept) {
  const std::string control =
      List(5, {Field("a"), Field(Big(1, 4)), Field(Big(0, 1)), TriggerList(1),
               List(7, {Field(OldTimings(0, 1, 2, 3)), Field(FromHex("4100")), ListHead(0, 13, 9),
                        NumberField(1)}),
               List(14, {Field(Timings(0, 1, 2, 3, 4))})});
  const std::string files[] = {
      ProfileBytes({TypeList(), RevisionList(), NameList("P"), ListHead(0, 11, 9)}),
      ProfileBytes({TypeList(), RevisionList(), NameList("P"), ListHead(0, 12, 9)}),
      ProfileBytes({TypeList(), RevisionList(), NameList("P"), ListHead(0, 4, 9)}),
      ProfileBytes({TypeList(), RevisionList(), NameList("P"), List(4, {control})}),
  };
  for (const std::string& bytes : files) {
    Disk().Remove(kFolder);
    Put("P.idprof", bytes);
    EXPECT_TRUE(LoadAndSave());
    EXPECT_EQ(On("P.idprof.damaged"), bytes);
  }
}

TEST_F(DamagedFileTest, AFileThatMerelyLacksSomethingIsNotKept) {
  for (const std::string& bytes : {whole, SmallProfile("P"), SmallProfile("P") + "behind"}) {
    Put("P.idprof", bytes);
    EXPECT_TRUE(LoadAndSave());
    EXPECT_EQ(Files(), Strings{"P.idprof"});
  }
}

TEST_F(DamagedFileTest, AGoodLoadForgetsTheDamagedFileBefore) {
  Put("P.idprof", cut);
  Put("whole.idprof", whole);
  ProfileFile profile;
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  ASSERT_TRUE(profile.Load(TextOf(PathOf("whole.idprof"))));
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(Files(), (Strings{"P.idprof", "whole.idprof"}));
}

TEST_F(DamagedFileTest, AFileRestoredFromItsTemporaryIsGood) {
  Put("P.idprof", cut);
  Put("P.idprof.tmp", whole);
  EXPECT_TRUE(LoadAndSave());
  EXPECT_EQ(Files(), Strings{"P.idprof"});
}

TEST_F(DamagedFileTest, WhatWasKeptBeforeIsNotOverwritten) {
  Put("P.idprof", cut);
  Put("P.idprof.damaged", "kept last year");
  Put("P.idprof.damaged2", cut + "longer");
  EXPECT_TRUE(LoadAndSave());
  EXPECT_EQ(On("P.idprof.damaged"), "kept last year");
  EXPECT_EQ(On("P.idprof.damaged2"), cut + "longer");
  EXPECT_EQ(On("P.idprof.damaged3"), cut);

  Put("P.idprof", cut);
  EXPECT_TRUE(LoadAndSave());
  EXPECT_EQ(Files().size(), 4u) << "the same bytes are kept once";
}

TEST_F(DamagedFileTest, TheSameBytesAreTheSameFromTheFirstToTheLast) {
  ProfileFile large;
  large.profileName = TextOf("P");
  large.deviceName = TextOf(std::string(BinaryFile::kWindowSize, 'd'));
  ASSERT_TRUE(large.Save());
  const std::string bytes = On("P.idprof").substr(0, On("P.idprof").size() - 1);
  for (const std::size_t place : {std::size_t{0}, bytes.size() - 1}) {
    Disk().Remove(kFolder);
    std::string other = bytes;
    ++other[place];
    Put("P.idprof", bytes);
    Put("P.idprof.damaged", other);
    EXPECT_TRUE(LoadAndSave());
    EXPECT_EQ(On("P.idprof.damaged"), other);
    EXPECT_EQ(On("P.idprof.damaged2"), bytes) << place;
  }
}

TEST_F(DamagedFileTest, WhatCantBeReadIsntTheSame) {
  Put("P.idprof", cut);
  Put("P.idprof.damaged", cut);
  {
    const WatchedFiles watched(sim.Groups(),
                               [this](const std::string& operation, const std::string& path) {
                                 if (operation == "read" && path == PathOf("P.idprof.damaged"))
                                   Disk().FailOperation(1);
                               });
    EXPECT_TRUE(LoadAndSave());
  }
  EXPECT_EQ(On("P.idprof.damaged2"), cut);
}

TEST_F(DamagedFileTest, AThousandAreKeptAndNoMore) {
  Put("P.idprof.damaged", "1");
  for (int n = 3; n < 1000; ++n) Put("P.idprof.damaged" + std::to_string(n), "n");
  for (const char* free : {"2", "1000"}) {
    const std::string bytes = cut + free;
    Put("P.idprof", bytes);
    EXPECT_TRUE(LoadAndSave());
    EXPECT_EQ(On(std::string("P.idprof.damaged") + free), bytes);
  }
  Put("P.idprof", cut);
  EXPECT_FALSE(LoadAndSave());
  EXPECT_EQ(On("P.idprof"), cut);
}

TEST_F(DamagedFileTest, WithoutRoomForTheCopyNothingIsSaved) {
  Put("P.idprof", cut);
  ProfileFile profile;
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  {
    const WatchedFiles full(sim.Groups(), [this](const std::string& operation, const std::string&) {
      if (operation == "copy") Disk().FailOperation(1, platform::ERROR_DISK_FULL);
    });
    EXPECT_FALSE(profile.Save());
  }
  EXPECT_EQ(On("P.idprof"), cut);
  EXPECT_EQ(Files(), Strings{"P.idprof"});
  EXPECT_TRUE(profile.Save()) << "the next one keeps it";
  EXPECT_EQ(On("P.idprof.damaged"), cut);
}

TEST_F(DamagedFileTest, AFileThatIsGoneNeedsNotBeKept) {
  Put("P.idprof", cut);
  ProfileFile profile;
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  Disk().Remove(PathOf("P.idprof"));
  EXPECT_TRUE(profile.Save());
  EXPECT_EQ(Files(), Strings{"P.idprof"});
}

TEST_F(DamagedFileTest, ASaveToAnotherFileLeavesItWhereItIs) {
  Put("P.idprof", cut);
  ProfileFile profile;
  ASSERT_TRUE(profile.Load(TextOf(PathOf("P.idprof"))));
  profile.profileName = "Q";
  EXPECT_TRUE(profile.Save());
  EXPECT_EQ(Files(), (Strings{"P.idprof", "Q.idprof"}));
  EXPECT_EQ(On("P.idprof"), cut);
}

TEST_F(DamagedFileTest, WhatIsKeptIsNeverListed) {
  Put("P.idprof.damaged", whole);
  Put("P.idprof.damaged2", whole);
  LinkedList<ByteString> names;
  ProfileFile profile;
  ASSERT_TRUE(profile.ListProfileNames(&names));
  EXPECT_EQ(names.count, 1);
  EXPECT_EQ(Bytes(profile.FindProfileFile("P")), PathOf("P.idprof"));
}

TEST_F(DamagedFileTest, TheLongestNameThatCanBeSavedCanBeKept) {
  const std::string name(ProfileFile::kLongestName, 'n');
  const std::string file = name + ".idprof";
  ProfileFile profile;
  profile.profileName = TextOf(name);
  ASSERT_TRUE(profile.Save());
  const std::string bytes = On(file).substr(0, On(file).size() - 1);
  Put(file, bytes);
  ASSERT_TRUE(profile.Load(TextOf(PathOf(file))));
  ASSERT_TRUE(profile.Save());
  EXPECT_EQ(On(file.substr(0, 247) + ".damaged"), bytes);
}

}  // namespace
}  // namespace kelvaro
