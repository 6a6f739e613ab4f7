#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "app/dialogs/dialogs.h"
#include "app/platform/simulation/desktop_simulation.h"
#include "app/platform/simulation/screen.h"
#include "app/resources/resources.h"

namespace kelvaro {
namespace {

using platform::IDOK;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;

constexpr std::uint32_t kText = 1200;

class WelcomeDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  WelcomeDialog dialog;
};

TEST_F(WelcomeDialogTest, SaysThis) {
  EXPECT_EQ(screen.Front(), 151u);
  EXPECT_EQ(screen.Title(), "Welcome to Kelvaro");
  EXPECT_EQ(
      screen.Text(kText),
      "\r\n                        Welcome to Kelvaro by Marnstone\r\n\r\n"
      "This utility gives you the ultimate control over your games by simulating keyboard and "
      "mouse input from your game pad or joystick. Per-game settings are stored in profiles. The "
      "included Rendlink utility enables you to start Kelvaro with your game in a single-step "
      "process.\r\n\r\n"
      "Example profiles are included. Before using an example profile you will need to associate "
      "a device with it, and without modification it probably won't work directly with your game "
      "device (the buttons and controls may be set wrong for your device and/or preferences). By "
      "looking at a few of the examples, and viewing the pop-up help for each control, you can "
      "jump right into creating profiles for your games. For more advanced options and detailed "
      "explanations, please refer to the included electronic help.\r\n\r\n"
      "Thank for trying this software, and we hope you enjoy using Kelvaro.");
}

TEST_F(WelcomeDialogTest, LooksLikeThis) {
  EXPECT_EQ(screen.Font(kText), "Arial 14 800");
  EXPECT_EQ(screen.TextColour(kText), platform::Rgb(0, 0, 64));
  EXPECT_EQ(screen.BackgroundColour(kText), platform::Rgb(255, 255, 255));
  EXPECT_EQ(screen.Picture(resources::kWelcomePicture), 148u);
  EXPECT_EQ(screen.Text(IDOK), "Close");
}

TEST_F(WelcomeDialogTest, CloseEndsIt) {
  screen.Click(IDOK);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), IDOK);
}

TEST_F(WelcomeDialogTest, EscEndsIt) {
  screen.Press(0x1B);
  EXPECT_FALSE(screen.Running());
}

TEST(WelcomeDialogWithoutItsPicture, ComesUpAllTheSame) {
  Simulation sim;
  sim.FailAlways("LoadBitmapA");
  WelcomeDialog dialog;
  Screen& screen = sim.Screen();
  screen.Start([&] { return dialog.DoModal(platform::kNoWindow); });
  EXPECT_EQ(screen.Picture(resources::kWelcomePicture), 0u);
  EXPECT_EQ(screen.Font(kText), "Arial 14 800");
}

}  // namespace
}  // namespace kelvaro
