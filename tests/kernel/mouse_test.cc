// What the case files don't show of the virtual mouse.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <cstdlib>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

// At the default sensitivity of 15 an axis at its limit is 1 + 3.4 counts a poll, of which the
// whole ones are sent: 4.
constexpr char kPointer[] =
    "\"mouse\":{\"mouseX\":{\"kind\":0,\"index\":0},\"mouseY\":{\"kind\":1,\"index\":0},"
    "\"mouseWheel\":{\"kind\":5,\"index\":0},\"mouseAlwaysActive\":true}";

class Mouse : public ::testing::Test {
 protected:
  void Start(const std::string& members, const std::vector<std::string>& controls = {}) {
    run = std::make_unique<ProfileRun>(ProfileOf(controls, members), "Mouse Pad", pad.Node());
    ASSERT_TRUE(run->Started());
  }

  // Holds an axis for `ms` and gives what came of it.
  std::vector<KernelEvent> Hold(unsigned int axis, int value, int ms) {
    pad.Move(axis, value);
    WaitMs(ms);
    pad.Move(axis, 0);
    WaitMs(50);
    return run->Mouse().Events();
  }

  UinputPad pad{OrdinaryPad("Mouse Pad")};
  std::unique_ptr<ProfileRun> run;
};

TEST_F(Mouse, StickAtItsLimitMovesFourCountsAPoll) {
  Start(kPointer);
  const std::vector<KernelEvent> events = Hold(ABS_X, 32000, 1000);
  EXPECT_NEAR(static_cast<double>(events.size()), 200, 1);
  for (const KernelEvent& event : events) {
    EXPECT_EQ(EventText(event), "REL_X 4");
  }
}

TEST_F(Mouse, BothAxesTravelInOneFrame) {
  Start(kPointer);
  pad.Put(EV_ABS, ABS_X, -32000);
  pad.Put(EV_ABS, ABS_Y, 32000);
  pad.Sync();
  WaitMs(100);
  pad.Put(EV_ABS, ABS_X, 0);
  pad.Put(EV_ABS, ABS_Y, 0);
  pad.Sync();
  WaitMs(50);
  const std::vector<KernelEvent> events = run->Mouse().Events();
  ASSERT_GE(events.size(), 2U * 19);
  ASSERT_EQ(events.size() % 2, 0U);
  for (std::size_t i = 0; i < events.size(); i += 2) {
    EXPECT_EQ(EventText(events[i]), "REL_X -4");
    EXPECT_EQ(EventText(events[i + 1]), "REL_Y 4");
    EXPECT_EQ(events[i].us, events[i + 1].us) << "the time of a frame is one";
  }
}

TEST_F(Mouse, StickWithinItsDeadZoneMovesNothing) {
  Start(kPointer);
  EXPECT_TRUE(Hold(ABS_X, 1599, 200).empty());
}

TEST_F(Mouse, ButtonsAreLeftMiddleAndRight) {
  Start(
      "\"mouse\":{\"leftButton\":0,\"leftMask\":\"0x1\",\"middleButton\":1,\"middleMask\":\"0x2\","
      "\"rightButton\":2,\"rightMask\":\"0x4\",\"mouseAlwaysActive\":true}");
  for (std::size_t button = 0; button < 3; ++button) {
    pad.Tap(button);
  }
  EXPECT_TRUE(Sent(run->Mouse(), {"BTN_LEFT down", "BTN_LEFT up", "BTN_MIDDLE down",
                                  "BTN_MIDDLE up", "BTN_RIGHT down", "BTN_RIGHT up"}));
}

// 4 counts a poll, each a 120th of a notch, and a positive axis scrolls toward the user.
TEST_F(Mouse, WheelSendsFractionsAndAWholeNotchForEach120) {
  Start(kPointer);
  const std::vector<KernelEvent> events = Hold(ABS_RZ, 32000, 1000);
  int fine = 0;
  int notches = 0;
  for (const KernelEvent& event : events) {
    ASSERT_EQ(event.type, static_cast<unsigned int>(EV_REL));
    if (event.code == REL_WHEEL_HI_RES) {
      EXPECT_EQ(event.value, -4);
      fine += event.value;
    } else {
      EXPECT_EQ(EventText(event), "REL_WHEEL -1");
      notches += event.value;
      // Never ahead of the fractions, never a whole notch behind them.
      EXPECT_LE(std::abs(notches * 120), std::abs(fine) + 4);
      EXPECT_GT(std::abs(notches * 120), std::abs(fine) - 120);
    }
  }
  EXPECT_NEAR(fine, -800, 4);
  EXPECT_EQ(notches, -6);
}

}  // namespace
}  // namespace kelvaro::kernel
