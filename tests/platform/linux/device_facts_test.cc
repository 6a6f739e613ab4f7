#include "app/platform/linux/device_facts.h"

#include <gtest/gtest.h>

#include "tests/platform/linux/evdev_description.h"

namespace platform {
namespace {

TEST(DeviceFacts, TellWhatTheKernelSays) {
  EvdevDescription described("A Pad");
  described.Bus(BUS_BLUETOOTH).Ids(0x1234, 0x5678, 0x0111).Unique("aa:bb").Physical("port");
  described.Keys({BTN_A, BTN_B}).Down(BTN_B).Axis(ABS_X, -5, 9, 3).Relative({REL_DIAL});
  described.Property(INPUT_PROP_ACCELEROMETER);
  const DeviceFacts facts = described.Facts();
  EXPECT_EQ(facts.ids.name, "A Pad");
  EXPECT_EQ(facts.ids.bus, BUS_BLUETOOTH);
  EXPECT_EQ(facts.ids.vendor, 0x1234);
  EXPECT_EQ(facts.ids.product, 0x5678);
  EXPECT_EQ(facts.ids.version, 0x0111);
  EXPECT_EQ(facts.ids.unique, "aa:bb");
  EXPECT_EQ(facts.ids.physical, "port");
  EXPECT_TRUE(facts.keys[BTN_A] && facts.keys[BTN_B] && !facts.keys[BTN_X]);
  EXPECT_TRUE(!facts.keysDown[BTN_A] && facts.keysDown[BTN_B]);
  EXPECT_TRUE(facts.HasAxis(ABS_X) && !facts.HasAxis(ABS_Y));
  EXPECT_EQ(facts.axes[ABS_X].minimum, -5);
  EXPECT_EQ(facts.axes[ABS_X].maximum, 9);
  EXPECT_EQ(facts.axes[ABS_X].value, 3);
  EXPECT_TRUE(facts.relative[REL_DIAL] && !facts.relative[REL_X]);
  EXPECT_TRUE(facts.properties[INPUT_PROP_ACCELEROMETER]);
}

TEST(DeviceFacts, EmptyTextsAreEmpty) {
  const DeviceFacts facts = EvdevDescription().Facts();
  EXPECT_EQ(facts.ids.unique, "");
  EXPECT_EQ(facts.ids.physical, "");
}

using Describe = void (*)(EvdevDescription&);

// One node for everything: the pad, and the keyboard that its paddles can type on.
void DescribeElite(EvdevDescription& d) {
  d.Bus(BUS_BLUETOOTH).Ids(0x045e, 0x0b05, 0x0903).Unique("40:8e:2c:00:00:01");
  d.Keys(KEY_ESC, KEY_KPDOT).Keys({KEY_102ND, KEY_F11, KEY_F12, KEY_RIGHTCTRL, KEY_RIGHTALT});
  d.Keys(KEY_HOME, KEY_DELETE).Keys(BTN_A, BTN_A + 15);
  for (const unsigned stick : {ABS_X, ABS_Y, ABS_RX, ABS_RY}) d.Axis(stick, 0, 65535, 32768);
  d.Axis(ABS_Z, 0, 1023).Axis(ABS_RZ, 0, 1023);
  d.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1).Axis(ABS_MISC, 0, 65535);
}

void DescribeSystemControl(EvdevDescription& d) {
  d.Ids(0x342d, 0xe483, 0x0111);
  d.Keys({KEY_POWER, KEY_HELP, KEY_MENU, KEY_SLEEP, KEY_WAKEUP, KEY_KBDILLUMUP, KEY_SELECT});
  d.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1).Axis(ABS_MISC, 0, 255);
}

// Four scales under a board, told as if they were hats.
void DescribeBalanceBoard(EvdevDescription& d) {
  d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600).Keys({BTN_A});
  for (unsigned code = ABS_HAT0X; code <= ABS_HAT1Y; ++code) d.Axis(code, 0, 65535);
}

struct Case {
  const char* what;
  Describe describe;
};

const Case kGameDevices[] = {
    {"a pad",
     [](EvdevDescription& d) {
       d.Keys(BTN_A, BTN_THUMBR).Axes({ABS_X, ABS_Y});
     }},
    {"a joystick",
     [](EvdevDescription& d) {
       d.Keys({BTN_TRIGGER}).Axes({ABS_X, ABS_Y});
     }},
    {"a box of buttons",
     [](EvdevDescription& d) { d.Keys(BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY40); }},
    {"a pad of buttons alone", [](EvdevDescription& d) { d.Keys(BTN_DPAD_UP, BTN_DPAD_RIGHT); }},
    {"pedals without a button",
     [](EvdevDescription& d) {
       d.Axes({ABS_X, ABS_Y, ABS_Z});
     }},
    {"pedals of their own axes",
     [](EvdevDescription& d) {
       d.Axes({ABS_GAS, ABS_BRAKE});
     }},
    {"a throttle", [](EvdevDescription& d) { d.Axes({ABS_THROTTLE}); }},
    {"a pedal set of Y, Z and RX",
     [](EvdevDescription& d) {
       d.Ids(0x046d, 0xc26a, 0x0111).Axes({ABS_Y, ABS_Z, ABS_RX});
     }},
    {"pedals of turning axes that go one way",
     [](EvdevDescription& d) {
       d.Axis(ABS_RX, 0, 4095).Axis(ABS_RY, 0, 4095).Axis(ABS_RZ, 0, 4095);
     }},
    {"a wheel base without a button",
     [](EvdevDescription& d) {
       d.Ids(0x0483, 0xa355, 0x0111).Axis(ABS_X, -32767, 32767).Axis(ABS_Y, 0, 255);
     }},
    {"a wheel and its pedals",
     [](EvdevDescription& d) {
       d.Axes({ABS_WHEEL, ABS_GAS, ABS_BRAKE});
     }},
    {"a stick with numbered buttons",
     [](EvdevDescription& d) {
       d.Keys(BTN_0, BTN_9).Axes({ABS_X, ABS_Y});
     }},
    {"a pad with some keys of a keyboard",
     [](EvdevDescription& d) {
       d.Keys(BTN_A, BTN_Z).Keys(KEY_Q, KEY_P).Axes({ABS_X, ABS_Y});
     }},
    {"a hand-held's sticks whose buttons are keys",
     [](EvdevDescription& d) {
       d.Bus(BUS_I2C).Keys({KEY_A, KEY_B, KEY_X, KEY_Y, KEY_UP, KEY_LEFT, KEY_RIGHT, KEY_DOWN});
       d.Axis(ABS_X, 95, 225).Axis(ABS_Y, 95, 225).Axis(ABS_Z, 95, 225).Axis(ABS_RZ, 95, 225);
     }},
    {"an Xbox Elite Series 2 over Bluetooth, which types too", &DescribeElite},
    {"a Wii remote itself",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600);
       d.Keys({KEY_UP, KEY_LEFT, KEY_RIGHT, KEY_DOWN, KEY_NEXT, KEY_PREVIOUS, BTN_1, BTN_2, BTN_A,
               BTN_B, BTN_MODE});
     }},
    {"a Wii remote's Nunchuk",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600).Keys({BTN_C, BTN_Z});
       d.Axis(ABS_HAT0X, -120, 120).Axis(ABS_HAT0Y, -120, 120);
       d.Axis(ABS_RX, -500, 500).Axis(ABS_RY, -500, 500).Axis(ABS_RZ, -500, 500);
     }},
    {"a Wii balance board", &DescribeBalanceBoard},
    {"a launcher's mirror",
     [](EvdevDescription& d) {
       d.Ids(0x28de, 0x11ff, 1).Keys(BTN_A, BTN_THUMBR).Axes({ABS_X, ABS_Y});
     }},
};

const Case kOtherDevices[] = {
    {"nothing at all", [](EvdevDescription&) {}},
    {"a hat alone", [](EvdevDescription& d) { d.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1); }},
    {"the system control of a keyboard", &DescribeSystemControl},
    {"the accelerometer of a Wii remote",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600);
       d.Axis(ABS_RX, -500, 500).Axis(ABS_RY, -500, 500).Axis(ABS_RZ, -500, 500);
     }},
    {"the turning sensor of a Wii remote",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600);
       d.Axis(ABS_RX, -16000, 16000).Axis(ABS_RY, -16000, 16000).Axis(ABS_RZ, -16000, 16000);
     }},
    {"the infrared camera of a Wii remote",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x057e, 0x0306, 0x0600);
       for (unsigned code = ABS_HAT0X; code <= ABS_HAT3X; code += 2)
         d.Axis(code, 0, 1023, 1023).Axis(code + 1, 0, 767, 1023);
     }},
    {"a keyboard", [](EvdevDescription& d) { d.Keys(KEY_ESC, KEY_MICMUTE); }},
    {"a keyboard that names pad buttons too",
     [](EvdevDescription& d) {
       d.Keys(KEY_ESC, KEY_MICMUTE).Keys(BTN_A, BTN_Z).Axes({ABS_VOLUME});
     }},
    {"a mouse",
     [](EvdevDescription& d) {
       d.Keys(BTN_LEFT, BTN_TASK).Relative({REL_X, REL_Y});
     }},
    {"a mouse of many buttons",
     [](EvdevDescription& d) {
       d.Keys(BTN_LEFT, BTN_TRIGGER).Relative({REL_X, REL_Y, REL_WHEEL});
     }},
    {"a touch pad",
     [](EvdevDescription& d) {
       d.Keys({BTN_LEFT, BTN_TOUCH, BTN_TOOL_FINGER}).Axes({ABS_X, ABS_Y, ABS_MT_SLOT});
       d.Property(INPUT_PROP_POINTER);
     }},
    {"the touch pad of a game pad",
     [](EvdevDescription& d) {
       d.Keys({BTN_LEFT}).Axes({ABS_X, ABS_Y}).Property(INPUT_PROP_BUTTONPAD);
     }},
    {"a touch screen",
     [](EvdevDescription& d) {
       d.Keys({BTN_TOUCH}).Axes({ABS_X, ABS_Y}).Property(INPUT_PROP_DIRECT);
     }},
    {"a tablet",
     [](EvdevDescription& d) {
       d.Keys({BTN_TOOL_PEN, BTN_STYLUS}).Axes({ABS_X, ABS_Y});
     }},
    {"the buttons and ring of a tablet",
     [](EvdevDescription& d) {
       d.Keys(BTN_0, BTN_9).Keys({BTN_STYLUS}).Axes({ABS_X, ABS_Y, ABS_WHEEL});
     }},
    {"the pointer of a virtual machine",
     [](EvdevDescription& d) {
       d.Keys(BTN_LEFT, BTN_MIDDLE).Axes({ABS_X, ABS_Y});
     }},
    {"the motion sensor of a game pad",
     [](EvdevDescription& d) {
       d.Axes({ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ}).Property(INPUT_PROP_ACCELEROMETER);
     }},
    {"the drop sensor of a laptop",
     [](EvdevDescription& d) {
       d.Bus(BUS_HOST).Axes({ABS_X, ABS_Y, ABS_Z});
     }},
    {"a drop sensor of two axes",
     [](EvdevDescription& d) {
       d.Bus(BUS_HOST).Axes({ABS_X, ABS_Y});
     }},
    {"a volume knob whose maker named all that came to mind",
     [](EvdevDescription& d) {
       d.Ids(0x413d, 0x553a, 0x0100);
       d.Keys({KEY_MUTE, KEY_VOLUMEDOWN, KEY_VOLUMEUP, KEY_POWER, KEY_PROPS, KEY_CALC, KEY_SLEEP,
               KEY_WAKEUP, KEY_NEXTSONG, KEY_PLAYPAUSE, KEY_PREVIOUSSONG, KEY_STOPCD, KEY_RECORD,
               KEY_REWIND, KEY_HOMEPAGE, KEY_FASTFORWARD, BTN_SELECT, BTN_START});
       d.Axes({ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ});
     }},
    {"a volume knob that is a wheel", [](EvdevDescription& d) { d.Axis(ABS_WHEEL, 0, 255); }},
    {"a volume knob that is a dial", [](EvdevDescription& d) { d.Axis(ABS_RUDDER, 0, 100); }},
    {"a volume slider with a mute key",
     [](EvdevDescription& d) { d.Keys({KEY_MUTE}).Axis(ABS_THROTTLE, 0, 100); }},
    {"a dial that lies on a screen",
     [](EvdevDescription& d) {
       d.Bus(BUS_BLUETOOTH).Ids(0x045e, 0x091b, 0x0108);
       d.Keys({BTN_0}).Relative({REL_DIAL}).Axis(ABS_X, 0, 32767).Axis(ABS_Y, 0, 32767);
     }},
    {"media keys with a volume knob",
     [](EvdevDescription& d) {
       d.Keys({KEY_MUTE, KEY_PLAYPAUSE}).Axes({ABS_VOLUME});
     }},
    {"a power button", [](EvdevDescription& d) { d.Keys({KEY_POWER}); }},
};

TEST(IsGameDevice, TakesWhatIsPlayedWith) {
  for (const Case& one : kGameDevices) {
    EvdevDescription described;
    one.describe(described);
    EXPECT_TRUE(IsGameDevice(described.Facts())) << one.what;
  }
}

TEST(IsGameDevice, LeavesOutWhatIsTypedTouchedOrShaken) {
  for (const Case& one : kOtherDevices) {
    EvdevDescription described;
    one.describe(described);
    EXPECT_FALSE(IsGameDevice(described.Facts())) << one.what;
  }
}

TEST(IsMirror, OfALaunchersPadAndOfTheVirtualBus) {
  EvdevDescription launcher;
  launcher.Ids(0x28de, 0x11ff, 1);
  EXPECT_TRUE(IsMirror(launcher.Facts().ids));
  EvdevDescription madeByAProgram;
  madeByAProgram.Bus(BUS_VIRTUAL);
  EXPECT_TRUE(IsMirror(madeByAProgram.Facts().ids));
  EvdevDescription pad;
  pad.Ids(0x28de, 0x1102, 1);
  EXPECT_FALSE(IsMirror(pad.Facts().ids));
  EvdevDescription otherMaker;
  otherMaker.Ids(0x1234, 0x11ff, 1);
  EXPECT_FALSE(IsMirror(otherMaker.Facts().ids));
}

TEST(IsGameDevice, LeavesOutOurOwnVirtualDevices) {
  for (const char* name : {"Kelvaro Keyboard", "Kelvaro Mouse"}) {
    EvdevDescription described(name);
    described.Keys(BTN_A, BTN_Z).Axes({ABS_X, ABS_Y});
    EXPECT_FALSE(IsGameDevice(described.Facts())) << name;
  }
}

}  // namespace
}  // namespace platform
