#include <gtest/gtest.h>

#include <string>

#include "app/dialogs/dialogs.h"
#include "app/platform/simulation/desktop_simulation.h"
#include "app/platform/simulation/screen.h"
#include "app/resources/resources.h"

namespace kelvaro {
namespace {

using platform::IDCANCEL;
using platform::IDOK;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;
using resources::kDontShowAgain;

class ShiftKeyRequiredDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  ShiftKeyRequiredDialog dialog;
};

TEST_F(ShiftKeyRequiredDialogTest, AsksYesOrNo) {
  EXPECT_EQ(screen.Front(), 149u);
  EXPECT_EQ(screen.Title(), "Shift Key Required");
  EXPECT_EQ(screen.Text(kDontShowAgain), "Don't show this again");
  EXPECT_FALSE(screen.Checked(kDontShowAgain));
  EXPECT_EQ(screen.Text(IDOK), "Yes");
  EXPECT_EQ(screen.Text(IDCANCEL), "No");
}

TEST_F(ShiftKeyRequiredDialogTest, YesIsOK) {
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_FALSE(dialog.dontShowAgain);
}

TEST_F(ShiftKeyRequiredDialogTest, NoIsCancel) {
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_FALSE(dialog.dontShowAgain);
}

TEST_F(ShiftKeyRequiredDialogTest, YesTakesACheckedBox) {
  screen.Click(kDontShowAgain);
  screen.Click(IDOK);
  EXPECT_TRUE(dialog.dontShowAgain);
}

TEST_F(ShiftKeyRequiredDialogTest, NoTakesACheckedBoxToo) {
  screen.Click(kDontShowAgain);
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_TRUE(dialog.dontShowAgain);
}

TEST_F(ShiftKeyRequiredDialogTest, ABoxThatIsUncheckedAgainIsNotChecked) {
  screen.Click(kDontShowAgain);
  screen.Click(kDontShowAgain);
  screen.Click(IDOK);
  EXPECT_FALSE(dialog.dontShowAgain);
}

}  // namespace
}  // namespace kelvaro
