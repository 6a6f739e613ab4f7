// What the person is told where profiles can't be stored: beside what the operations themselves
// say.
#include "app/resources/control_ids.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::uint32_t kClosed =
    platform::FILE_ATTRIBUTE_DIRECTORY | platform::FILE_ATTRIBUTE_READONLY;

class SavingTest : public MainWindowTest {
 protected:
  void Close() { sim.Disk().PutFolder("/game/Profiles", kClosed); }
  void Open() { sim.Disk().PutFolder("/game/Profiles"); }
  // An edit, which is stored at once.
  void Edit() {
    screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
    screen.Click(kMouseAlwaysActive);
  }
  bool Says(std::size_t told, const std::string& text) {
    return screen.Told().at(told).find(text) != std::string::npos;
  }
};

TEST_F(SavingTest, NothingIsToldWhereProfilesCanBeStored) {
  Begin();
  Edit();
  EXPECT_EQ(screen.Told().size(), 0u);
}

TEST_F(SavingTest, AFolderThatCannotBeWrittenIsToldAtTheStartOutsideTheBoxes) {
  Close();
  Begin();
  ASSERT_EQ(screen.Told().size(), 1u);
  EXPECT_TRUE(Says(0, "/game/Profiles"));
  EXPECT_TRUE(Says(0, "give yourself the right to write"));
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(screen.Chosen(kProfileList), kProfile);
}

TEST_F(SavingTest, AProgramsFolderThatCannotBeWrittenIsToldWhereThereAreNoProfilesYet) {
  WithoutProfiles();
  sim.Disk().PutFolder("/game", kClosed);
  Begin();
  EXPECT_EQ(screen.Told().size(), 1u);
}

TEST_F(SavingTest, ASaveThatFailsIsToldOnceWithItsReason) {
  Begin();
  Close();
  Edit();
  ASSERT_EQ(screen.Told().size(), 1u);
  EXPECT_TRUE(Says(0, "\"Game\""));
  EXPECT_TRUE(Says(0, "/game/Profiles\n(Access is denied.)"));
  Edit();
  Edit();
  EXPECT_EQ(screen.Told().size(), 1u);
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(SavingTest, ASaveThatFailsLaterIsToldBesideWhatWasToldAtTheStart) {
  Close();
  Begin();
  Edit();
  Edit();
  EXPECT_EQ(screen.Told().size(), 2u);
}

TEST_F(SavingTest, AFullDiskIsTold) {
  sim.SetSystemMessage(platform::ERROR_DISK_FULL, "The disk is full.\r\n");
  Begin();
  sim.Disk().ClearLog();
  Edit();
  std::uint64_t write = 0;
  const auto& log = sim.Disk().Log();
  while (log.at(write).name != "WriteFile") ++write;
  sim.Disk().FailOperation(write + 1, platform::ERROR_DISK_FULL);
  Edit();
  ASSERT_EQ(screen.Told().size(), 1u);
  EXPECT_TRUE(Says(0, "(The disk is full.)"));
  EXPECT_TRUE(Says(0, "make room on the disk"));
}

TEST_F(SavingTest, WhatCouldNotBeStoredComesWithTheNextSaveThatWorks) {
  Begin();
  Close();
  Edit();
  ASSERT_FALSE(Stored(kProfile)->mouseAlwaysActive);
  Open();
  Edit();
  Edit();
  EXPECT_TRUE(Stored(kProfile)->mouseAlwaysActive);
}

TEST_F(SavingTest, WithoutAProfileThereIsNothingThatCouldFail) {
  WithoutProfiles();
  Begin();
  Edit();
  EXPECT_EQ(screen.Told().size(), 0u);
}

}  // namespace
}  // namespace kelvaro
