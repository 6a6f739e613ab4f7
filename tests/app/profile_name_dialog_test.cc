#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "app/dialogs/dialogs.h"
#include "app/platform/simulation/desktop_simulation.h"
#include "app/platform/simulation/screen.h"

namespace kelvaro {
namespace {

using platform::IDCANCEL;
using platform::IDOK;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;

constexpr std::uint32_t kName = 1137;
constexpr std::uint32_t kTopLine = 1157;

class ProfileNameDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  ProfileNameDialog dialog{"Copy Profile", "Copy profile", "Game"};
};

TEST_F(ProfileNameDialogTest, ShowsItsTitleItsTopLineAndTheOldName) {
  EXPECT_EQ(screen.Front(), 147u);
  EXPECT_EQ(screen.Title(), "Copy Profile");
  EXPECT_EQ(screen.Text(kTopLine), "Copy profile \"Game\"");
  EXPECT_EQ(screen.Text(kName), "Game");
  EXPECT_EQ(screen.Focus(), kName);
}

TEST_F(ProfileNameDialogTest, WhatIsTypedFirstTakesThePlaceOfTheOldName) {
  screen.Press('Z');
  EXPECT_EQ(screen.Text(kName), "z");
}

TEST(ProfileNameDialogTopLine, ShowsEachAmpersandOfTheName) {
  Simulation sim;
  ProfileNameDialog dialog{"Copy Profile", "Copy profile", "Tom && Jerry & Co"};
  sim.Screen().Start([&] { return dialog.DoModal(platform::kNoWindow); });
  EXPECT_EQ(sim.Screen().Text(kTopLine), "Copy profile \"Tom && Jerry & Co\"");
  EXPECT_EQ(sim.Screen().Text(kName), "Tom && Jerry & Co");
  sim.Screen().Click(IDCANCEL);
}

TEST_F(ProfileNameDialogTest, OKTakesTheNewName) {
  screen.Type(kName, "Other Game");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), "Other Game");
}

TEST_F(ProfileNameDialogTest, TheOldNameIsAName) {
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), "Game");
}

TEST_F(ProfileNameDialogTest, AnEmptyNameIsRefusedAndAskedForAgain) {
  screen.Type(kName, "");
  screen.FocusOn(IDCANCEL);
  screen.Click(IDOK);
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().owner, dialog.window);
  EXPECT_EQ(screen.Box().text, "Profile name cannot be blank");
  EXPECT_EQ(screen.Box().caption, "Missing Profile Name");
  EXPECT_EQ(screen.Box().type, platform::MB_OK);
  screen.Answer(IDOK);
  EXPECT_EQ(screen.Front(), 147u);
  EXPECT_EQ(screen.Focus(), kName);
  EXPECT_EQ(Bytes(dialog.name), "Game");
  screen.Type(kName, "Other");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), "Other");
}

TEST_F(ProfileNameDialogTest, ABlankIsNotEmpty) {
  screen.Type(kName, " ");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), " ");
}

TEST_F(ProfileNameDialogTest, CancelKeepsTheOldNameAndAsksNothing) {
  screen.Type(kName, "");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_EQ(Bytes(dialog.name), "Game");
  EXPECT_TRUE(screen.Boxes().empty());
}

}  // namespace
}  // namespace kelvaro
