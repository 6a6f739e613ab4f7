// What a pad's state is when events were missed.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <csignal>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

class State : public ::testing::Test {
 protected:
  // Far more than the kernel keeps for a reader that stands still.
  void Flood() {
    for (int i = 0; i < 5000; ++i) pad.Move(ABS_Y, i % 2 == 0 ? 1000 : -1000);
  }

  UinputPad pad{OrdinaryPad("State Pad")};
};

TEST_F(State, ButtonHeldWhenTheProgramStartsCounts) {
  pad.Press(0);
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}), "State Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  EXPECT_TRUE(run.Keyboard().IsDown(KEY_A));
  run.Keyboard().Clear();  // its press came before or after the reader did
  pad.Release(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A up"}));
}

TEST_F(State, EventsThatTheKernelDroppedAreMadeUpFor) {
  ProfileRun run(ProfileOf({ButtonControl(0, "a"), ButtonControl(1, "b"), ItemControl(0, 0, 2, "x"),
                            ItemControl(8, 0, 2, "h")}),
                 "State Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Press(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down"}));
  run.Process().Signal(SIGSTOP);
  pad.Release(0);
  pad.Press(1);
  pad.Move(ABS_X, 32000);
  pad.TurnHat(0, 0);
  Flood();
  run.Process().Signal(SIGCONT);
  // In one change: what is held now goes down and what isn't goes up, in the order of the Controls.
  EXPECT_TRUE(
      Sent(run.Keyboard(), {"KEY_A down", "KEY_A up", "KEY_B down", "KEY_X down", "KEY_H down"}));
  run.Process().Signal(SIGSTOP);
  pad.Release(1);
  pad.Move(ABS_X, 0);
  pad.TurnHat(0, -1);
  Flood();
  run.Process().Signal(SIGCONT);
  WaitMs(100);
  EXPECT_FALSE(run.Keyboard().AnyDown());
  // From here on events are taken one by one again.
  run.Keyboard().Clear();
  pad.Tap(0, 30);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up"}));
}

}  // namespace
}  // namespace kelvaro::kernel
