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

constexpr std::uint32_t kName = 1138;

class DeleteProfileDialogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  DeleteProfileDialog dialog{"My Game"};
};

TEST_F(DeleteProfileDialogTest, ShowsTheNameInDoubleQuotes) {
  EXPECT_EQ(screen.Front(), 138u);
  EXPECT_EQ(screen.Title(), "Delete Profile");
  EXPECT_EQ(screen.Text(kName), "\"My Game\"");
  EXPECT_EQ(screen.Text(IDOK), "Yes, Delete It");
  EXPECT_EQ(screen.Text(IDCANCEL), "No!");
}

TEST(DeleteProfileDialogName, ShowsEachAmpersandOfTheName) {
  Simulation sim;
  DeleteProfileDialog dialog{"Tom && Jerry & Co"};
  sim.Screen().Start([&] { return dialog.DoModal(platform::kNoWindow); });
  EXPECT_EQ(sim.Screen().Text(kName), "\"Tom && Jerry & Co\"");
  sim.Screen().Click(IDCANCEL);
}

TEST_F(DeleteProfileDialogTest, YesIsOK) {
  screen.Click(IDOK);
  EXPECT_EQ(screen.Result(), IDOK);
}

TEST_F(DeleteProfileDialogTest, NoIsCancel) {
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
}

TEST_F(DeleteProfileDialogTest, EnterIsNo) {
  screen.Press(0x0D);
  EXPECT_EQ(screen.Result(), IDCANCEL);
}

TEST_F(DeleteProfileDialogTest, EscIsNo) {
  screen.Press(0x1B);
  EXPECT_EQ(screen.Result(), IDCANCEL);
}

TEST_F(DeleteProfileDialogTest, ClosingIsNo) {
  screen.Close();
  EXPECT_EQ(screen.Result(), IDCANCEL);
}

}  // namespace
}  // namespace kelvaro
