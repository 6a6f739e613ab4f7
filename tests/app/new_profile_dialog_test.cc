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

class NewProfileDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  NewProfileDialog dialog;
};

TEST_F(NewProfileDialogTest, AsksForANameInAnEmptyEdit) {
  EXPECT_EQ(screen.Front(), 137u);
  EXPECT_EQ(screen.Title(), "New Profile");
  EXPECT_EQ(screen.Text(kName), "");
  EXPECT_EQ(screen.Focus(), kName);
}

TEST_F(NewProfileDialogTest, OKTakesTheName) {
  screen.Type(kName, "My \"first\" Game");
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), "My \"first\" Game");
}

TEST_F(NewProfileDialogTest, EnterIsOK) {
  screen.Type(kName, "Game");
  screen.Press(0x0D);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_EQ(Bytes(dialog.name), "Game");
}

TEST_F(NewProfileDialogTest, AnEmptyNameIsTakenToo) {
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
  EXPECT_TRUE(dialog.name.IsEmpty());
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(NewProfileDialogTest, CancelTakesNothing) {
  screen.Type(kName, "Game");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_TRUE(dialog.name.IsEmpty());
}

}  // namespace
}  // namespace kelvaro
