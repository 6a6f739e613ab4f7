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
    {"a hat alone", [](EvdevDescription& d) { d.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1); }},
    {"a stick with numbered buttons",
     [](EvdevDescription& d) {
       d.Keys(BTN_0, BTN_9).Axes({ABS_X, ABS_Y});
     }},
    {"a pad with some keys of a keyboard",
     [](EvdevDescription& d) {
       d.Keys(BTN_A, BTN_Z).Keys(KEY_Q, KEY_P).Axes({ABS_X, ABS_Y});
     }},
};

const Case kOtherDevices[] = {
    {"nothing at all", [](EvdevDescription&) {}},
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

TEST(IsGameDevice, LeavesOutOurOwnVirtualDevices) {
  for (const char* name : {"Kelvaro Keyboard", "Kelvaro Mouse"}) {
    EvdevDescription described(name);
    described.Keys(BTN_A, BTN_Z).Axes({ABS_X, ABS_Y});
    EXPECT_FALSE(IsGameDevice(described.Facts())) << name;
  }
}

}  // namespace
}  // namespace platform
