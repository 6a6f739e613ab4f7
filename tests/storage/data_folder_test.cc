#include "storage/data_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "storage/profile_file.h"
#include "tests/foundation/texts.h"

namespace kelvaro {
namespace {

using Strings = std::vector<std::string>;

constexpr std::uint32_t kClosed =
    platform::FILE_ATTRIBUTE_DIRECTORY | platform::FILE_ATTRIBUTE_READONLY;
constexpr char kUsers[] = "/home/player/.local/share/kelvaro";

class DataFolderTest : public testing::Test {
 protected:
  platform::simulation::VirtualDisk& Disk() { return sim.Disk(); }
  void PutMarker() { Disk().PutFile("/game/PerUser", ""); }
  // Stores a profile where it belongs now.
  void Store(const std::string& name, const std::string& device = "") {
    ProfileFile made;
    made.profileName = name.c_str();
    made.deviceName = device.c_str();
    ASSERT_TRUE(made.Save()) << name;
  }
  Strings Names() {
    ProfileFile reader;
    LinkedList<ByteString> list;
    reader.ListProfileNames(&list);
    return Texts(list);
  }
  static Strings Sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
  }
  static std::string Folder() { return DataFolder().Text(); }
  static std::string Profiles() { return ProfileFile::ProfileFolder().Text(); }

  platform::simulation::Simulation sim;
};

TEST_F(DataFolderTest, IsTheProgramsFolderWithoutTheMarkerWhateverElseIsThere) {
  EXPECT_EQ(Folder(), "/game");
  Disk().PutFolder(std::string(kUsers) + "/Profiles");
  Disk().PutFolder("/game", kClosed);
  EXPECT_EQ(Folder(), "/game");
  EXPECT_EQ(Profiles(), "/game/Profiles");
}

TEST_F(DataFolderTest, IsTheUsersOwnWithTheMarker) {
  PutMarker();
  EXPECT_EQ(Folder(), kUsers);
  EXPECT_EQ(Profiles(), std::string(kUsers) + "/Profiles");
  sim.SetUserDataFolder("/data/");
  EXPECT_EQ(Folder(), "/data/kelvaro");
  Disk().Format('\\');
  Disk().PutFile("C:\\game\\PerUser", "");
  sim.SetUserDataFolder("C:\\Users\\player");
  EXPECT_EQ(Profiles(), "C:\\Users\\player\\kelvaro\\Profiles");
}

TEST_F(DataFolderTest, IsTheProgramsFolderForAUserWithoutOne) {
  PutMarker();
  sim.SetUserDataFolder("");
  EXPECT_EQ(Folder(), "/game");
}

TEST_F(DataFolderTest, TheExamplesAreCopiedWhenTheUsersFolderIsMadeAndNeverAgain) {
  Store("One");
  Store("Two", "shipped");
  Store("Three");
  const auto shipped = Disk().FileBytes("/game/Profiles/Two.idprof");
  PutMarker();
  EXPECT_EQ(Names(), (Strings{"One", "Two", "Three"}));
  EXPECT_EQ(Disk().FileBytes(std::string(kUsers) + "/Profiles/Two.idprof"), shipped);

  Store("Two", "mine");
  ProfileFile gone;
  gone.profileName = "One";
  ASSERT_TRUE(gone.DeleteProfileFile());
  Disk().PutFile("/game/Profiles/New.idprof", *shipped);
  EXPECT_EQ(Names(), (Strings{"Two", "Three"}));
  ProfileFile read;
  ASSERT_TRUE(read.Load(read.FindProfileFile("Two")));
  EXPECT_STREQ(read.deviceName.Text(), "mine");

  // What the package installed is as it was.
  EXPECT_EQ(Disk().FileBytes("/game/Profiles/Two.idprof"), shipped);
  EXPECT_EQ(Disk().List("/game/Profiles"),
            (Strings{"One.idprof", "Two.idprof", "Three.idprof", "New.idprof"}));
}

TEST_F(DataFolderTest, ACopyOfTheExamplesThatWasCutOffIsMadeUpForAtTheNextLook) {
  const Strings all = {"One", "Three", "Two"};
  const auto begin = [&] {
    for (const std::string& name : all) Store(name);
    PutMarker();
    Disk().ClearLog();
  };
  begin();
  EXPECT_EQ(Sorted(Names()), all);
  const std::uint64_t operations = Disk().Log().size();
  ASSERT_GE(operations, 5u);
  for (std::uint64_t n = 1; n <= operations; ++n) {
    for (const bool after : {false, true}) {
      Disk().Format('/');
      begin();
      if (after) {
        Disk().StopAfter(n);
      } else {
        Disk().StopBefore(n);
      }
      Names();
      EXPECT_TRUE(Disk().IsStopped());
      Disk().Restart();
      EXPECT_EQ(Sorted(Names()), all) << "stopped at operation " << n << ", after " << after;
      ProfileFile gone;
      gone.profileName = "Two";
      ASSERT_TRUE(gone.DeleteProfileFile());
      EXPECT_EQ(Sorted(Names()), (Strings{"One", "Three"})) << n;
      EXPECT_EQ(Disk().List(kUsers), Strings{"Profiles"}) << n;
    }
  }
}

TEST_F(DataFolderTest, ACopyOfTheExamplesThatIsMadeUpForReplacesNoProfile) {
  Store("One", "shipped");
  PutMarker();
  Store("One", "mine");
  Disk().PutFile(std::string(kUsers) + "/Profiles.unfinished", "");
  EXPECT_EQ(Names(), Strings{"One"});
  ProfileFile read;
  ASSERT_TRUE(read.Load(read.FindProfileFile("One")));
  EXPECT_STREQ(read.deviceName.Text(), "mine");
}

TEST_F(DataFolderTest, AnEmptyUsersFolderIsOneThatWasMade) {
  Store("One");
  PutMarker();
  Disk().PutFolder(std::string(kUsers) + "/Profiles");
  EXPECT_EQ(Names(), Strings{});
}

TEST_F(DataFolderTest, WithoutTheMarkerALookMakesAndCopiesNothing) {
  EXPECT_EQ(Names(), Strings{});
  EXPECT_FALSE(Disk().Exists("/game/Profiles"));
  EXPECT_FALSE(Disk().Exists(kUsers));
}

TEST_F(DataFolderTest, AUsersFolderThatCannotBeMadeIsAnEmptyOne) {
  Store("One");
  PutMarker();
  Disk().PutFolder("/home/player", kClosed);
  EXPECT_EQ(Names(), Strings{});
  EXPECT_FALSE(Disk().Exists(kUsers));
}

TEST_F(DataFolderTest, ASaveIsPossibleWhereItsFolderOrTheNextOneAboveItLetsIt) {
  EXPECT_TRUE(ProfileFile::CanSave());
  Disk().PutFolder("/game", kClosed);
  EXPECT_FALSE(ProfileFile::CanSave());
  // The folder itself decides where it is there.
  Disk().PutFolder("/game/Profiles");
  EXPECT_TRUE(ProfileFile::CanSave());
  Disk().PutFolder("/game/Profiles", kClosed);
  EXPECT_FALSE(ProfileFile::CanSave());
  PutMarker();
  EXPECT_TRUE(ProfileFile::CanSave());
  Disk().PutFolder("/home/player", kClosed);
  EXPECT_FALSE(ProfileFile::CanSave());
  // A file in its place.
  Disk().PutFile(kUsers, "");
  EXPECT_FALSE(ProfileFile::CanSave());
}

TEST_F(DataFolderTest, TheRootItselfCanBeAskedForASave) {
  Disk().SetProgramPath("/kelvaro");
  EXPECT_TRUE(ProfileFile::CanSave());
}

}  // namespace
}  // namespace kelvaro
