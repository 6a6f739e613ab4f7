// Pads that are no standard pad: many buttons, D-pads of either kind, four hats, odd axes, keys;
// and what looks like a pad and is none.

#include <gtest/gtest.h>
#include <linux/input.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

// Key texts of 64 different keys with the names that the kernel has for them.
struct NamedKey {
  std::string text;
  std::string name;
};

std::vector<NamedKey> SixtyFourKeys() {
  std::vector<NamedKey> keys;
  for (char c = 'a'; c <= 'z'; ++c) {
    keys.push_back({std::string(1, c), std::string("KEY_") + static_cast<char>(c - 'a' + 'A')});
  }
  for (char c = '0'; c <= '9'; ++c) {
    keys.push_back({std::string(1, c), std::string("KEY_") + c});
    keys.push_back({std::string("<NP") + c + ">", std::string("KEY_KP") + c});
  }
  for (int i = 1; i <= 12; ++i) {
    const std::string name = "F" + std::to_string(i);
    keys.push_back({"<" + name + ">", "KEY_" + name});
  }
  keys.insert(keys.end(), {{"-", "KEY_MINUS"},
                           {"=", "KEY_EQUAL"},
                           {";", "KEY_SEMICOLON"},
                           {",", "KEY_COMMA"},
                           {".", "KEY_DOT"},
                           {"/", "KEY_SLASH"}});
  return keys;
}

class ManyButtonsTest : public ::testing::TestWithParam<std::size_t> {};

TEST_P(ManyButtonsTest, EveryButtonUpTo64IsItsOwnTrigger) {
  PadShape shape;
  shape.name = "Button Box";
  shape.buttons = ManyButtons(GetParam());
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["buttons"].asUInt(), GetParam());

  const std::vector<NamedKey> keys = SixtyFourKeys();
  ASSERT_EQ(keys.size(), 64U);
  std::vector<std::string> controls;
  for (std::size_t button = 0; button < std::min<std::size_t>(64, GetParam()); ++button) {
    controls.push_back(ButtonControl(button, keys[button].text));
  }
  ProfileRun run(ProfileOf(controls), "Button Box", pad.Node());
  ASSERT_TRUE(run.Started());
  std::vector<std::string> expected;
  for (std::size_t button = 0; button < GetParam(); ++button) {
    pad.Tap(button, 15);
    if (button < 64) {
      expected.push_back(keys[button].name + " down");
      expected.push_back(keys[button].name + " up");
    }
  }
  EXPECT_TRUE(Sent(run.Keyboard(), expected));
}

INSTANTIATE_TEST_SUITE_P(Counts, ManyButtonsTest, ::testing::Values(24, 40, 128));

TEST(OddPad, DirectionPadOfAxesIsAHat) {
  PadShape shape;
  shape.name = "Hat Pad";
  shape.buttons = GamePadButtons(4);
  shape.hats = 1;
  UinputPad pad(shape);
  const Json::Value device = OnlyDevice();
  EXPECT_EQ(device["povs"].asUInt(), 1U);
  EXPECT_EQ(device["axes"].asUInt(), 0U);
  ProfileRun run(ProfileOf({ItemControl(8, 0, 4, "r"), ItemControl(8, 0, 8, "d")}), "Hat Pad",
                 pad.Node());
  ASSERT_TRUE(run.Started());
  pad.TurnHat(0, 9000);
  WaitMs(50);
  pad.TurnHat(0, 13500);
  WaitMs(50);
  pad.TurnHat(0, 18000);
  WaitMs(50);
  pad.TurnHat(0, -1);
  // On the diagonal both are active, and the first, which uses the same hat, keeps the second from
  // firing.
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_R down", "KEY_R up", "KEY_D down", "KEY_D up"}));
}

TEST(OddPad, DirectionPadOfButtonsIsFourButtons) {
  PadShape shape;
  shape.name = "Button Direction Pad";
  shape.buttons = GamePadButtons(4);
  for (const unsigned int code : {BTN_DPAD_UP, BTN_DPAD_DOWN, BTN_DPAD_LEFT, BTN_DPAD_RIGHT}) {
    shape.buttons.push_back(code);
  }
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["buttons"].asUInt(), 8U);
  ProfileRun run(ProfileOf({ButtonControl(4, "<Up>"), ButtonControl(5, "<Down>"),
                            ButtonControl(6, "<Left>"), ButtonControl(7, "<Right>")}),
                 "Button Direction Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  for (std::size_t button = 4; button < 8; ++button) pad.Tap(button, 30);
  EXPECT_TRUE(
      Sent(run.Keyboard(), {"KEY_UP down", "KEY_UP up", "KEY_DOWN down", "KEY_DOWN up",
                            "KEY_LEFT down", "KEY_LEFT up", "KEY_RIGHT down", "KEY_RIGHT up"}));
}

TEST(OddPad, FourHatsAreFourHats) {
  PadShape shape;
  shape.name = "Four Hats";
  shape.buttons = GamePadButtons(4);
  shape.hats = 4;
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["povs"].asUInt(), 4U);
  std::vector<std::string> controls;
  const char* names = "abcdefghijklmnop";
  for (int hat = 0; hat < 4; ++hat) {
    for (int direction = 0; direction < 4; ++direction) {
      controls.push_back(
          ItemControl(8, hat, 1 << direction, std::string(1, names[4 * hat + direction])));
    }
  }
  ProfileRun run(ProfileOf(controls), "Four Hats", pad.Node());
  ASSERT_TRUE(run.Started());
  for (int hat = 0; hat < 4; ++hat) {
    for (const int angle : {27000, 0, 9000, 18000}) {  // left, up, right, down
      pad.NudgeHat(hat, angle);
    }
  }
  std::vector<std::string> expected;
  for (int i = 0; i < 16; ++i) {
    const std::string key = std::string("KEY_") + static_cast<char>(names[i] - 'a' + 'A');
    expected.push_back(key + " down");
    expected.push_back(key + " up");
  }
  EXPECT_TRUE(Sent(run.Keyboard(), expected));
}

TEST(OddPad, AxisRangeOfTheDeviceIsScaled) {
  PadShape shape;
  shape.name = "Byte Axes";
  shape.buttons = GamePadButtons(2);
  shape.axes = {{ABS_X, 0, 255, 128}, {ABS_Y, -1, 1, 0}};
  UinputPad pad(shape);
  ProfileRun run(ProfileOf({ItemControl(0, 0, 2, "d"), ItemControl(0, 0, 1, "a"),
                            ItemControl(1, 0, 1, "w"), ItemControl(1, 0, 2, "s")}),
                 "Byte Axes", pad.Node());
  ASSERT_TRUE(run.Started());
  // 64000 / 255 = 250.98 a step: beyond 16000 from 192 on (16188) and up to 63 (-16188).
  for (const int value : {191, 192, 128, 64, 63, 128}) {
    pad.Move(ABS_X, value);
    WaitMs(30);
  }
  for (const int value : {-1, 0, 1, 0}) {
    pad.Move(ABS_Y, value);
    WaitMs(30);
  }
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_D down", "KEY_D up", "KEY_A down", "KEY_A up",
                                    "KEY_W down", "KEY_W up", "KEY_S down", "KEY_S up"}));
}

TEST(OddPad, ThrottleAndRudderAreTheSliders) {
  PadShape shape;
  shape.name = "Flight Stick";
  shape.buttons = {BTN_TRIGGER, BTN_THUMB};
  shape.axes = {{ABS_X}, {ABS_Y}, {ABS_THROTTLE}, {ABS_RUDDER}};
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["axes"].asUInt(), 4U);
  ProfileRun run(
      ProfileOf({ItemControl(6, 0, 2, "t"), ItemControl(7, 0, 2, "r"), ButtonControl(1, "b")}),
      "Flight Stick", pad.Node());
  ASSERT_TRUE(run.Started());
  for (const unsigned int axis : {ABS_THROTTLE, ABS_RUDDER}) {
    pad.Nudge(axis, 32000);
  }
  pad.Press(1);
  EXPECT_TRUE(
      Sent(run.Keyboard(), {"KEY_T down", "KEY_T up", "KEY_R down", "KEY_R up", "KEY_B down"}));
}

TEST(OddPad, AKeyOfThePadIsItsLastButton) {
  PadShape shape;
  shape.name = "Pad With Share";
  shape.buttons = GamePadButtons(11);
  shape.buttons.push_back(KEY_RECORD);
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["buttons"].asUInt(), 12U);
  ProfileRun run(ProfileOf({ButtonControl(0, "a"), ButtonControl(11, "s")}), "Pad With Share",
                 pad.Node());
  ASSERT_TRUE(run.Started());
  for (const std::size_t button : {11, 0}) {
    pad.Tap(button, 30);
  }
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_S down", "KEY_S up", "KEY_A down", "KEY_A up"}));
}

// The pad, and in the same node the keyboard that its paddles can type on.
PadShape EliteOverBluetooth() {
  PadShape shape;
  shape.name = "Xbox Elite Wireless Controller";
  shape.bus = BUS_BLUETOOTH;
  shape.vendor = 0x045e;
  shape.product = 0x0b05;
  for (unsigned int button = 0; button < 16; ++button) shape.buttons.push_back(BTN_A + button);
  for (unsigned int key = KEY_ESC; key <= KEY_KPDOT; ++key) shape.buttons.push_back(key);
  for (unsigned int key = KEY_HOME; key <= KEY_DELETE; ++key) shape.buttons.push_back(key);
  shape.axes = {{ABS_X, 0, 65535, 32768},  {ABS_Y, 0, 65535, 32768}, {ABS_RX, 0, 65535, 32768},
                {ABS_RY, 0, 65535, 32768}, {ABS_Z, 0, 1023, 0},      {ABS_RZ, 0, 1023, 0}};
  shape.hats = 1;
  return shape;
}

TEST(OddPad, OneThatTypesTooIsPlayedWithAndItsKeysAreNoButtons) {
  const PadShape shape = EliteOverBluetooth();
  UinputPad pad(shape);
  const Json::Value device = OnlyDevice();
  EXPECT_EQ(device["buttons"].asUInt(), 16U);
  EXPECT_EQ(device["axes"].asUInt(), 6U);
  EXPECT_EQ(device["povs"].asUInt(), 1U);
  ProfileRun run(ProfileOf({ButtonControl(15, "p"), ItemControl(2, 0, 2, "t"),
                            ItemControl(8, 0, 2, "u"), ButtonControl(16, "x")}),
                 shape.name, pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Tap(15, 30);
  for (std::size_t key = 16; key < shape.buttons.size(); ++key) {
    pad.Tap(key, 10);
  }
  pad.Nudge(ABS_Z, 1023);
  pad.NudgeHat(0, 0);
  EXPECT_TRUE(Sent(run.Keyboard(),
                   {"KEY_P down", "KEY_P up", "KEY_T down", "KEY_T up", "KEY_U down", "KEY_U up"}));
}

TEST(OddPad, AnAxisInAHatsPlaceTurnsNoHatAtRest) {
  PadShape shape;
  shape.name = "Odd Axis";
  shape.buttons = GamePadButtons(2);
  shape.axes = {{ABS_X}, {ABS_Y}, {ABS_HAT0X, 0, 239, 0}};
  UinputPad pad(shape);
  const Json::Value device = OnlyDevice();
  EXPECT_EQ(device["povs"].asUInt(), 0U);
  EXPECT_EQ(device["axes"].asUInt(), 3U);
  ProfileRun run(ProfileOf({ItemControl(8, 0, 1, "l"), ItemControl(8, 0, 4, "r"),
                            ItemControl(6, 0, 2, "s"), ButtonControl(0, "b")}),
                 "Odd Axis", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Tap(0, 30);
  pad.Nudge(ABS_HAT0X, 239);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_B down", "KEY_B up", "KEY_S down", "KEY_S up"}));
}

TEST(NoPad, SystemControlOfAKeyboard) {
  PadShape shape;
  shape.name = "Keyboard System Control";
  shape.phys = "test/port1";
  shape.vendor = 0x342d;
  shape.product = 0xe483;
  shape.buttons = {KEY_POWER, KEY_HELP, KEY_MENU, KEY_SLEEP, KEY_WAKEUP, KEY_SELECT};
  shape.hats = 1;
  UinputPad control(shape);
  PadShape other;
  other.name = "Real Pad";
  other.buttons = GamePadButtons(4);
  UinputPad pad(other);
  EXPECT_EQ(OnlyDevice()["name"].asString(), "Real Pad");
}

// Rules of udev's for the life of the object. `file` is a name that no other rules have.
class UdevRules {
 public:
  UdevRules(const std::string& file, const std::string& from) : path("/run/udev/rules.d/" + file) {
    std::filesystem::create_directories("/run/udev/rules.d");
    std::filesystem::copy_file(from, path);
    Reload();
  }
  ~UdevRules() {
    std::filesystem::remove(path);
    Reload();
  }
  UdevRules(const UdevRules&) = delete;
  UdevRules& operator=(const UdevRules&) = delete;

 private:
  static void Reload() {
    EXPECT_EQ(RunToEnd({"/usr/bin/udevadm", "control", "--reload"}).status, 0);
  }

  const std::string path;
};

TEST(NoPad, WhatARuleOfUdevsSaysIsNoJoystick) {
  const UdevRules rules("70-no-joystick.rules",
                        WriteFile("ATTRS{name}==\"Lamp\", ENV{ID_INPUT_JOYSTICK}=\"0\"\n"));
  PadShape shape;
  shape.name = "Lamp";
  shape.phys = "test/port1";
  shape.buttons = GamePadButtons(6);
  shape.axes = {{ABS_X}, {ABS_Y}};
  UinputPad lamp(shape);
  shape.name = "Real Pad";
  shape.phys = "test/port2";
  UinputPad pad(shape);
  EXPECT_EQ(OnlyDevice()["name"].asString(), "Real Pad");
}

// What udev writes down of a node: whoever sits at the machine may open it.
bool IsForTheSeat(const std::string& node) {
  const Finished told = RunToEnd({"/usr/bin/udevadm", "info", "--query=property", node});
  EXPECT_EQ(told.status, 0) << told.err;
  return told.out.find("TAGS=") != std::string::npos &&
         told.out.find(":uaccess:") != std::string::npos;
}

TEST(UdevRule, OpensAPadThatTypesTooToWhoeverSitsAtTheMachine) {
  const UdevRules rules("60-kelvaro.rules", KELVARO_PACKAGING "/60-kelvaro.rules");
  for (const std::uint16_t product : {0x0b05, 0x0b22}) {
    PadShape shape = EliteOverBluetooth();
    shape.product = product;
    UinputPad pad(shape);
    EXPECT_TRUE(IsForTheSeat(pad.Node())) << std::hex << product;
  }
  // Not a keyboard of the same maker, and not by cable, where the pad has a node of its own.
  PadShape other = EliteOverBluetooth();
  other.product = 0x0b06;
  EXPECT_FALSE(IsForTheSeat(UinputPad(other).Node()));
  other.product = 0x0b05;
  other.bus = BUS_USB;
  EXPECT_FALSE(IsForTheSeat(UinputPad(other).Node()));
}

}  // namespace
}  // namespace kelvaro::kernel
