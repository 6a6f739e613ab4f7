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

class OddPad : public ::testing::Test {
 protected:
  // Plugs it in, compares what the list of devices counts, and starts a profile on it.
  void Start(const PadShape& shape, std::size_t buttons, unsigned int axes, unsigned int povs,
             const std::vector<std::string>& controls) {
    pad = std::make_unique<UinputPad>(shape);
    const tests::Json device = OnlyDevice();
    EXPECT_EQ(device["buttons"].Unsigned(), buttons);
    EXPECT_EQ(device["axes"].Unsigned(), axes);
    EXPECT_EQ(device["povs"].Unsigned(), povs);
    run = std::make_unique<ProfileRun>(ProfileOf(controls), shape.name, pad->Node());
    ASSERT_TRUE(run->Started());
  }
  // Each of these keys went down and up, one behind the other.
  void ExpectTaps(const std::vector<std::string>& keys) {
    std::vector<std::string> expected;
    for (const std::string& key : keys) {
      expected.insert(expected.end(), {"KEY_" + key + " down", "KEY_" + key + " up"});
    }
    EXPECT_TRUE(Sent(run->Keyboard(), expected));
  }

  std::unique_ptr<UinputPad> pad;
  std::unique_ptr<ProfileRun> run;
};

class ManyButtonsTest : public OddPad, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ManyButtonsTest, EveryButtonUpTo64IsItsOwnTrigger) {
  const std::vector<NamedKey> keys = SixtyFourKeys();
  ASSERT_EQ(keys.size(), 64U);
  std::vector<std::string> controls;
  std::vector<std::string> expected;
  for (std::size_t button = 0; button < std::min<std::size_t>(64, GetParam()); ++button) {
    controls.push_back(ButtonControl(button, keys[button].text));
    expected.push_back(keys[button].name);
  }
  ASSERT_NO_FATAL_FAILURE(Start({.name = "Button Box", .buttons = ManyButtons(GetParam())},
                                GetParam(), 0, 0, controls));
  for (std::size_t button = 0; button < GetParam(); ++button) pad->Tap(button, 15);
  ExpectTaps(expected);
}

INSTANTIATE_TEST_SUITE_P(Counts, ManyButtonsTest, ::testing::Values(24, 40, 128));

TEST_F(OddPad, DirectionPadOfAxesIsAHat) {
  ASSERT_NO_FATAL_FAILURE(Start({.name = "Hat Pad", .buttons = GamePadButtons(4), .hats = 1}, 4, 0,
                                1, {ItemControl(8, 0, 4, "r"), ItemControl(8, 0, 8, "d")}));
  for (const int angle : {9000, 13500, 18000, -1}) {
    pad->TurnHat(0, angle);
    WaitMs(50);
  }
  // On the diagonal both are active, and the first, which uses the same hat, keeps the second from
  // firing.
  ExpectTaps({"R", "D"});
}

TEST_F(OddPad, DirectionPadOfButtonsIsFourButtons) {
  PadShape shape{.name = "Button Direction Pad", .buttons = GamePadButtons(4)};
  shape.buttons.insert(shape.buttons.end(),
                       {BTN_DPAD_UP, BTN_DPAD_DOWN, BTN_DPAD_LEFT, BTN_DPAD_RIGHT});
  ASSERT_NO_FATAL_FAILURE(Start(shape, 8, 0, 0,
                                {ButtonControl(4, "<Up>"), ButtonControl(5, "<Down>"),
                                 ButtonControl(6, "<Left>"), ButtonControl(7, "<Right>")}));
  for (std::size_t button = 4; button < 8; ++button) pad->Tap(button, 30);
  ExpectTaps({"UP", "DOWN", "LEFT", "RIGHT"});
}

TEST_F(OddPad, FourHatsAreFourHats) {
  std::vector<std::string> controls;
  std::vector<std::string> expected;
  for (int i = 0; i < 16; ++i) {
    const char letter = static_cast<char>('a' + i);
    controls.push_back(ItemControl(8, i / 4, 1 << i % 4, std::string(1, letter)));
    expected.push_back(std::string(1, static_cast<char>(letter - 'a' + 'A')));
  }
  ASSERT_NO_FATAL_FAILURE(
      Start({.name = "Four Hats", .buttons = GamePadButtons(4), .hats = 4}, 4, 0, 4, controls));
  for (int hat = 0; hat < 4; ++hat) {
    for (const int angle : {27000, 0, 9000, 18000}) {  // left, up, right, down
      pad->NudgeHat(hat, angle);
    }
  }
  ExpectTaps(expected);
}

TEST_F(OddPad, AxisRangeOfTheDeviceIsScaled) {
  ASSERT_NO_FATAL_FAILURE(Start({.name = "Byte Axes",
                                 .buttons = GamePadButtons(2),
                                 .axes = {{ABS_X, 0, 255, 128}, {ABS_Y, -1, 1, 0}}},
                                2, 2, 0,
                                {ItemControl(0, 0, 2, "d"), ItemControl(0, 0, 1, "a"),
                                 ItemControl(1, 0, 1, "w"), ItemControl(1, 0, 2, "s")}));
  // 64000 / 255 = 250.98 a step: beyond 16000 from 192 on (16188) and up to 63 (-16188).
  for (const int value : {191, 192, 128, 64, 63, 128}) {
    pad->Move(ABS_X, value);
    WaitMs(30);
  }
  for (const int value : {-1, 0, 1, 0}) {
    pad->Move(ABS_Y, value);
    WaitMs(30);
  }
  ExpectTaps({"D", "A", "W", "S"});
}

TEST_F(OddPad, ThrottleAndRudderAreTheSliders) {
  ASSERT_NO_FATAL_FAILURE(Start(
      {.name = "Flight Stick",
       .buttons = {BTN_TRIGGER, BTN_THUMB},
       .axes = {{ABS_X}, {ABS_Y}, {ABS_THROTTLE}, {ABS_RUDDER}}},
      2, 4, 0, {ItemControl(6, 0, 2, "t"), ItemControl(7, 0, 2, "r"), ButtonControl(1, "b")}));
  for (const unsigned int axis : {ABS_THROTTLE, ABS_RUDDER}) pad->Nudge(axis, 32000);
  pad->Tap(1);
  ExpectTaps({"T", "R", "B"});
}

TEST_F(OddPad, AKeyOfThePadIsItsLastButton) {
  PadShape shape{.name = "Pad With Share", .buttons = GamePadButtons(11)};
  shape.buttons.push_back(KEY_RECORD);
  ASSERT_NO_FATAL_FAILURE(Start(shape, 12, 0, 0, {ButtonControl(0, "a"), ButtonControl(11, "s")}));
  for (const std::size_t button : {11, 0}) pad->Tap(button, 30);
  ExpectTaps({"S", "A"});
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

TEST_F(OddPad, OneThatTypesTooIsPlayedWithAndItsKeysAreNoButtons) {
  const PadShape shape = EliteOverBluetooth();
  ASSERT_NO_FATAL_FAILURE(Start(shape, 16, 6, 1,
                                {ButtonControl(15, "p"), ItemControl(2, 0, 2, "t"),
                                 ItemControl(8, 0, 2, "u"), ButtonControl(16, "x")}));
  pad->Tap(15, 30);
  for (std::size_t key = 16; key < shape.buttons.size(); ++key) pad->Tap(key, 10);
  pad->Nudge(ABS_Z, 1023);
  pad->NudgeHat(0, 0);
  ExpectTaps({"P", "T", "U"});
}

TEST_F(OddPad, AnAxisInAHatsPlaceTurnsNoHatAtRest) {
  ASSERT_NO_FATAL_FAILURE(Start({.name = "Odd Axis",
                                 .buttons = GamePadButtons(2),
                                 .axes = {{ABS_X}, {ABS_Y}, {ABS_HAT0X, 0, 239, 0}}},
                                2, 3, 0,
                                {ItemControl(8, 0, 1, "l"), ItemControl(8, 0, 4, "r"),
                                 ItemControl(6, 0, 2, "s"), ButtonControl(0, "b")}));
  pad->Tap(0, 30);
  pad->Nudge(ABS_HAT0X, 239);
  ExpectTaps({"B", "S"});
}

TEST(NoPad, SystemControlOfAKeyboard) {
  UinputPad control({.name = "Keyboard System Control",
                     .phys = "test/port1",
                     .vendor = 0x342d,
                     .product = 0xe483,
                     .buttons = {KEY_POWER, KEY_HELP, KEY_MENU, KEY_SLEEP, KEY_WAKEUP, KEY_SELECT},
                     .hats = 1});
  UinputPad pad({.name = "Real Pad", .buttons = GamePadButtons(4)});
  EXPECT_EQ(OnlyDevice()["name"].Text(), "Real Pad");
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
  UinputPad lamp(OrdinaryPad("Lamp", "test/port1"));
  UinputPad pad(OrdinaryPad("Real Pad", "test/port2"));
  EXPECT_EQ(OnlyDevice()["name"].Text(), "Real Pad");
}

// What udev notes for a node: the person at the machine may open it.
bool IsForTheSeat(const std::string& node) {
  const Finished told = RunToEnd({"/usr/bin/udevadm", "info", "--query=property", node});
  EXPECT_EQ(told.status, 0) << told.err;
  return told.out.find("TAGS=") != std::string::npos &&
         told.out.find(":uaccess:") != std::string::npos;
}

TEST(UdevRule, OpensAPadThatTypesTooToThePersonAtTheMachine) {
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
