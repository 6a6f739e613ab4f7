// What the case files don't show of the virtual keyboard.

#include <gtest/gtest.h>
#include <linux/input.h>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"

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

TEST_F(Keys, EveryPressOfManyComesThrough) {
  Start({ButtonControl(0, "a")});
  std::vector<std::string> expected;
  for (int i = 0; i < 100; ++i) {
    pad.Tap(0, 20);
    expected.insert(expected.end(), {"KEY_A down", "KEY_A up"});
  }
  EXPECT_TRUE(Sent(run->Keyboard(), expected));
}

TEST_F(Keys, RightModifiersAreTheRightKeys) {
  Start({ButtonControl(0, "<RCtrl><Alt><Shift>x")});
  pad.Tap(0);
  EXPECT_TRUE(Sent(run->Keyboard(),
                   {"KEY_RIGHTSHIFT down", "KEY_RIGHTCTRL down", "KEY_RIGHTALT down", "KEY_X down",
                    "KEY_RIGHTSHIFT up", "KEY_RIGHTCTRL up", "KEY_RIGHTALT up", "KEY_X up"}));
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

TEST_F(Keys, FourthAndFifthMouseButtonAreSideButtons) {
  Start({ButtonControl(0, "<X1Mouse>"), ButtonControl(1, "<X2Mouse>")});
  pad.Tap(0);
  pad.Tap(1);
  EXPECT_TRUE(
      Sent(run->Mouse(), {"BTN_SIDE down", "BTN_SIDE up", "BTN_EXTRA down", "BTN_EXTRA up"}));
}

}  // namespace
}  // namespace kelvaro::kernel
