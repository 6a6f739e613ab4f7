#include <gtest/gtest.h>

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
using resources::kDontShowAgain;

class AutoDetectModeDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  AutoDetectModeDialog dialog;
};

TEST_F(AutoDetectModeDialogTest, TellsHowADetectionEnds) {
  EXPECT_EQ(screen.Front(), 152u);
  EXPECT_EQ(screen.Title(), "Auto-Detect Mode");
  EXPECT_EQ(screen.Text(kDontShowAgain), "Don't show this again");
  EXPECT_FALSE(screen.Checked(kDontShowAgain));
}

TEST_F(AutoDetectModeDialogTest, OKTakesTheBoxAsItIs) {
  screen.Click(IDOK);
  EXPECT_FALSE(dialog.dontShowAgain);
}

TEST_F(AutoDetectModeDialogTest, OKTakesACheckedBox) {
  screen.Click(kDontShowAgain);
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_TRUE(dialog.dontShowAgain);
}

TEST_F(AutoDetectModeDialogTest, ClosingTakesTheBoxToo) {
  screen.Click(kDontShowAgain);
  screen.Close();
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(dialog.dontShowAgain);
}

}  // namespace
}  // namespace kelvaro
