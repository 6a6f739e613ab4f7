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

constexpr std::uint32_t kBox = 1199;

class AdvancedSettingsDialogTest : public ::testing::Test {
 protected:
  void Open(AdvancedSettingsDialog& dialog) {
    screen.Start([&] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  AdvancedSettingsDialog off{false};
  AdvancedSettingsDialog on{true};
};

TEST_F(AdvancedSettingsDialogTest, OpensWithTheSettingAsItIs) {
  Open(off);
  EXPECT_EQ(screen.Front(), 150u);
  EXPECT_EQ(screen.Title(), "Advanced Settings");
  EXPECT_EQ(screen.Text(kBox), "Auto-detect device plugin");
  EXPECT_FALSE(screen.Checked(kBox));
  screen.Close();
  Open(on);
  EXPECT_TRUE(screen.Checked(kBox));
}

TEST_F(AdvancedSettingsDialogTest, OKTakesTheBox) {
  Open(off);
  screen.Click(kBox);
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_TRUE(off.autodetectDevicePlugin);
  Open(on);
  screen.Click(kBox);
  screen.Click(IDOK);
  EXPECT_FALSE(on.autodetectDevicePlugin);
}

TEST_F(AdvancedSettingsDialogTest, CancelChangesNothing) {
  Open(off);
  screen.Click(kBox);
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_FALSE(off.autodetectDevicePlugin);
}

TEST_F(AdvancedSettingsDialogTest, OnlyTheBoxHasATip) {
  Open(off);
  EXPECT_EQ(screen.Hover(kBox),
            "Checking this option modifies the program behavior as follows:\n\n"
            "1) No error message will be displayed if your device is not detected at startup or "
            "after changing profiles.\n\n"
            "2) The device for the current profile will be automatically detected and selected "
            "when it is plugged in. Kelvaro checks for new devices every 5 seconds when this "
            "option is turned on.");
  EXPECT_EQ(screen.ToolTipWidth(), 400);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  EXPECT_EQ(screen.Hover(IDOK), "");
  EXPECT_EQ(screen.Hover(IDCANCEL), "");
}

TEST_F(AdvancedSettingsDialogTest, WithoutATipControlItWorksAllTheSame) {
  sim.FailNext("CreateToolTip");
  Open(off);
  EXPECT_EQ(screen.Hover(kBox), "");
  screen.Click(kBox);
  screen.Click(IDOK);
  EXPECT_TRUE(off.autodetectDevicePlugin);
}

}  // namespace
}  // namespace kelvaro
