// A pad's buttons, axes and hats become keys of the virtual keyboard.

#include <gtest/gtest.h>
#include <linux/input.h>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

class Keys : public ::testing::Test {
 protected:
  // Two lines of every test: the pad is there, the program polls it.
  void Start(const std::vector<std::string>& controls) {
    run = std::make_unique<ProfileRun>(ProfileOf(controls), "Ordinary Pad", pad.Node());
    ASSERT_TRUE(run->Started());
  }

  UinputPad pad{OrdinaryPad("Ordinary Pad")};
  std::unique_ptr<ProfileRun> run;
};

TEST_F(Keys, VirtualDevicesStandOnTheUsbBusUnderTheirNames) {
  Start({ButtonControl(0, "a")});
  int found = 0;
  for (const InputNode& node : InputNodes()) {
    if (node.name == kKeyboardName || node.name == kMouseName) {
      EXPECT_EQ(node.bus, BUS_USB) << node.name;
      ++found;
    }
  }
  EXPECT_EQ(found, 2);
}

TEST_F(Keys, ButtonDownAndUpIsKeyDownAndUp) {
  Start({ButtonControl(0, "a")});
  const std::int64_t pressed = NowUs();
  pad.Press(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down"}));
  pad.Release(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up"}));
  EXPECT_FALSE(run->Keyboard().AnyDown());
  const std::int64_t delay = run->Keyboard().Events().at(0).us - pressed;
  EXPECT_LT(delay, 15000) << "microseconds, at an interval of 5 ms";
}

TEST_F(Keys, EveryPressOfManyComesThrough) {
  Start({ButtonControl(0, "a")});
  std::vector<std::string> expected;
  for (int i = 0; i < 100; ++i) {
    pad.Tap(0, 20);
    expected.insert(expected.end(), {"KEY_A down", "KEY_A up"});
  }
  EXPECT_TRUE(Sent(run->Keyboard(), expected));
}

TEST_F(Keys, ModifierGoesDownBeforeItsKeyAndUpBeforeItOnRelease) {
  Start({ButtonControl(0, "<Ctrl>c")});
  pad.Tap(0);
  EXPECT_TRUE(
      Sent(run->Keyboard(), {"KEY_LEFTCTRL down", "KEY_C down", "KEY_LEFTCTRL up", "KEY_C up"}));
}

TEST_F(Keys, RightModifiersAreTheRightKeys) {
  Start({ButtonControl(0, "<RCtrl><Alt><Shift>x")});
  pad.Tap(0);
  EXPECT_TRUE(Sent(run->Keyboard(),
                   {"KEY_RIGHTSHIFT down", "KEY_RIGHTCTRL down", "KEY_RIGHTALT down", "KEY_X down",
                    "KEY_RIGHTSHIFT up", "KEY_RIGHTCTRL up", "KEY_RIGHTALT up", "KEY_X up"}));
}

TEST_F(Keys, HoldAllKeepsEveryKeyDownUntilTheRelease) {
  Start({"{\"buttonMask\":\"0x1\",\"actions\":[{\"actionFlags\":1,\"text\":\"ab<P:100>c\"}]}"});
  pad.Press(0);
  WaitMs(50);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_B down", "KEY_C down"}));
  const std::vector<KernelEvent> events = run->Keyboard().Events();
  EXPECT_GE(events.at(2).us - events.at(1).us, 100000);
  pad.Release(0);
  EXPECT_TRUE(Sent(run->Keyboard(),
                   {"KEY_A down", "KEY_B down", "KEY_C down", "KEY_A up", "KEY_B up", "KEY_C up"}));
}

TEST_F(Keys, HoldTimeAndReleasePauseAreKept) {
  Start({ButtonControl(0, "ab", "\"keyHoldTime\":40,\"keyReleasePause\":30")});
  pad.Tap(0, 300);
  ASSERT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up", "KEY_B down", "KEY_B up"}));
  const std::vector<KernelEvent> events = run->Keyboard().Events();
  EXPECT_NEAR(static_cast<double>(events[1].us - events[0].us), 40000, 4000);
  EXPECT_NEAR(static_cast<double>(events[2].us - events[1].us), 30000, 4000);
}

TEST_F(Keys, RepeatingControlTapsAtOnceAfterItsDelayAndThenAtItsSpeed) {
  Start({ButtonControl(0, "a", "\"repeatEnabled\":true,\"repeatDelay\":300,\"repeatSpeed\":100")});
  pad.Tap(0, 745);
  // 0, 300, then every 100 to 110: 400, 500, 600, 700 at the earliest, 410, 520, 630, 740 at the
  // latest, and the first after the delay may be 10 late itself.
  const std::vector<KernelEvent> events = run->Keyboard().Events();
  ASSERT_GE(events.size(), 10U);
  ASSERT_LE(events.size(), 12U);
  for (std::size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(EventText(events[i]), i % 2 == 0 ? "KEY_A down" : "KEY_A up") << i;
  }
  EXPECT_NEAR(static_cast<double>(events[2].us - events[0].us), 306000, 8000);
  for (std::size_t i = 4; i < events.size(); i += 2) {
    EXPECT_NEAR(static_cast<double>(events[i].us - events[i - 2].us), 106000, 8000) << i;
  }
  EXPECT_FALSE(run->Keyboard().AnyDown());
}

TEST_F(Keys, ReleaseModeFiresWhenTheButtonIsLetGo) {
  Start({ButtonControl(0, "a", "\"activateOnPress\":false")});
  pad.Press(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {}));
  pad.Release(0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_A down", "KEY_A up"}));
}

TEST_F(Keys, AxisBeyondHalfIsATrigger) {
  Start({ItemControl(0, 0, 2, "d"), ItemControl(0, 0, 1, "a"), ItemControl(5, 0, 2, "e")});
  pad.Move(ABS_X, 16000);
  EXPECT_TRUE(Sent(run->Keyboard(), {}));
  pad.Move(ABS_X, 16001);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_D down"}));
  pad.Move(ABS_X, -16001);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_D down", "KEY_D up", "KEY_A down"}));
  pad.Move(ABS_X, 0);
  WaitMs(50);
  run->Keyboard().Clear();
  pad.Move(ABS_RZ, 32000);
  WaitMs(50);
  pad.Move(ABS_RZ, 0);
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_E down", "KEY_E up"}));
}

TEST_F(Keys, HatIsATriggerInEachOfItsDirections) {
  Start({ItemControl(8, 0, 1, "<Left>"), ItemControl(8, 0, 2, "<Up>"),
         ItemControl(8, 0, 4, "<Right>"), ItemControl(8, 0, 8, "<Down>")});
  for (const int angle : {0, 9000, 18000, 27000}) {
    pad.NudgeHat(0, angle);
  }
  EXPECT_TRUE(
      Sent(run->Keyboard(), {"KEY_UP down", "KEY_UP up", "KEY_RIGHT down", "KEY_RIGHT up",
                             "KEY_DOWN down", "KEY_DOWN up", "KEY_LEFT down", "KEY_LEFT up"}));
}

TEST_F(Keys, KeysWithoutAScanCodeReachTheKernelToo) {
  Start({ButtonControl(0, "<VolUp>"), ButtonControl(1, "<MediaPP>"), ButtonControl(2, "<RMenu>"),
         ButtonControl(3, "<NPEnter>"), ButtonControl(4, "<Win>"), ButtonControl(5, "<Menu>")});
  for (std::size_t button = 0; button < 6; ++button) {
    pad.Tap(button);
  }
  EXPECT_TRUE(Sent(run->Keyboard(), {"KEY_VOLUMEUP down", "KEY_VOLUMEUP up", "KEY_PLAYPAUSE down",
                                     "KEY_PLAYPAUSE up", "KEY_RIGHTALT down", "KEY_RIGHTALT up",
                                     "KEY_KPENTER down", "KEY_KPENTER up", "KEY_LEFTMETA down",
                                     "KEY_LEFTMETA up", "KEY_COMPOSE down", "KEY_COMPOSE up"}));
}

TEST_F(Keys, MouseTokensComeFromTheMouse) {
  Start({ButtonControl(0, "<LMouse>"), ButtonControl(1, "<MMouse>"), ButtonControl(2, "<RMouse>")});
  for (std::size_t button = 0; button < 3; ++button) {
    pad.Tap(button);
  }
  EXPECT_TRUE(Sent(run->Mouse(), {"BTN_LEFT down", "BTN_LEFT up", "BTN_MIDDLE down",
                                  "BTN_MIDDLE up", "BTN_RIGHT down", "BTN_RIGHT up"}));
  EXPECT_TRUE(Sent(run->Keyboard(), {}));
}

TEST_F(Keys, FourthAndFifthMouseButtonAreSideButtons) {
  Start({ButtonControl(0, "<X1Mouse>"), ButtonControl(1, "<X2Mouse>")});
  pad.Tap(0);
  pad.Tap(1);
  EXPECT_TRUE(
      Sent(run->Mouse(), {"BTN_SIDE down", "BTN_SIDE up", "BTN_EXTRA down", "BTN_EXTRA up"}));
}

}  // namespace
}  // namespace kelvaro::kernel
