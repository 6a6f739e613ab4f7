#include "rendlink/target_icon.h"

#include "tests/rendlink/rendlink_fixture.h"

namespace kelvaro::rendlink {
namespace {

constexpr char kTarget[] = "/games/race/race.sh";

class TargetIconTest : public RendlinkTest {
 protected:
  void PutEntry(const std::string& path, const std::string& exec, const std::string& icon) {
    sim.Disk().PutFile(path, "[Desktop Entry]\nExec=" + exec + "\nIcon=" + icon + "\n");
  }
  std::string Icon(const std::string& target = kTarget) {
    return IconOf(target, session.ApplicationsFolders());
  }
};

TEST_F(TargetIconTest, WithoutAnyItIsKelvarosOwn) { EXPECT_EQ(Icon(), "com.marnstone.Kelvaro"); }

TEST_F(TargetIconTest, APictureBesideTheTargetGoesByItsName) {
  sim.Disk().PutFile("/games/race/icon.png", "");
  EXPECT_EQ(Icon(), "/games/race/icon.png");
  sim.Disk().PutFile("/games/race/race.sh.png", "");
  EXPECT_EQ(Icon(), "/games/race/race.sh.png");
  sim.Disk().PutFile("/games/race/race.xpm", "");
  EXPECT_EQ(Icon(), "/games/race/race.xpm");
  sim.Disk().PutFile("/games/race/race.png", "");
  EXPECT_EQ(Icon(), "/games/race/race.png");
  sim.Disk().PutFile("/games/race/race.svg", "");
  EXPECT_EQ(Icon(), "/games/race/race.svg");
}

TEST_F(TargetIconTest, AFolderIsNoPicture) {
  sim.Disk().PutFolder("/games/race/icon.png");
  EXPECT_EQ(Icon(), "com.marnstone.Kelvaro");
}

TEST_F(TargetIconTest, ADesktopEntryOfTheTargetHasItsIcon) {
  PutEntry("/usr/share/applications/other.desktop", "/games/other/race.sh", "other");
  EXPECT_EQ(Icon(), "com.marnstone.Kelvaro");
  PutEntry("/usr/share/applications/race.desktop", "\"/games/race/race.sh\" %U", "race-icon");
  EXPECT_EQ(Icon(), "race-icon");
}

TEST_F(TargetIconTest, AnEntryMayNameTheProgramWithoutAFolder) {
  PutEntry("/usr/share/applications/race.desktop", "race.sh --full", "race-icon");
  EXPECT_EQ(Icon(), "race-icon");
}

TEST_F(TargetIconTest, ThePersonsOwnFolderComesFirstAndWhatHasNoIconIsPassedOver) {
  PutEntry("/usr/share/applications/a.desktop", kTarget, "system");
  PutEntry("/home/player/applications/a.desktop", kTarget, "");
  EXPECT_EQ(Icon(), "system");
  PutEntry("/home/player/applications/z.desktop", kTarget, "own");
  EXPECT_EQ(Icon(), "own");
  PutEntry("/home/player/applications/b.desktop", kTarget, "by name first");
  EXPECT_EQ(Icon(), "by name first");
}

TEST_F(TargetIconTest, APictureBesideGoesBeforeAnEntry) {
  PutEntry("/usr/share/applications/a.desktop", kTarget, "system");
  sim.Disk().PutFile("/games/race/race.png", "");
  EXPECT_EQ(Icon(), "/games/race/race.png");
}

TEST_F(TargetIconTest, WhatIsNoEntryOrTooLongIsPassedOver) {
  sim.Disk().PutFile("/usr/share/applications/a.desktop", "Exec=/games/race/race.sh\nIcon=a\n");
  sim.Disk().PutFolder("/usr/share/applications/b.desktop");
  PutEntry("/usr/share/applications/c.desktop", kTarget, std::string((1 << 20) + 1, 'x'));
  EXPECT_EQ(Icon(), "com.marnstone.Kelvaro");
}

}  // namespace
}  // namespace kelvaro::rendlink
