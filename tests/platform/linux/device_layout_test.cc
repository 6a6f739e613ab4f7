#include "app/platform/linux/device_layout.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

#include "tests/platform/linux/evdev_description.h"

namespace platform {
namespace {

constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kIntMax = std::numeric_limits<std::int32_t>::max();

TEST(ScaleAxis, Table) {
  const struct {
    std::int32_t value, minimum, maximum, lowest, highest, scaled;
    const char* why;
  } rows[] = {
      {0, 0, 255, -32000, 32000, -32000, "lower end of 8 bits"},
      {255, 0, 255, -32000, 32000, 32000, "upper end of 8 bits"},
      // 127 * 64000 / 255 = 31874.51 and 128 * 64000 / 255 = 32125.49, less 32000.
      {127, 0, 255, -32000, 32000, -125, "just below the middle of 8 bits"},
      {128, 0, 255, -32000, 32000, 125, "just above the middle of 8 bits"},
      {-32768, -32768, 32767, -32000, 32000, -32000, "lower end of 16 bits"},
      {32767, -32768, 32767, -32000, 32000, 32000, "upper end of 16 bits"},
      // 32768 * 64000 / 65535 = 32000.49 and 32767 * 64000 / 65535 = 31999.51.
      {0, -32768, 32767, -32000, 32000, 0, "a stick at rest"},
      {-1, -32768, 32767, -32000, 32000, 0, "and a step beside"},
      {0, -100, 100, -32000, 32000, 0, "the middle of an even range"},
      {50, 0, 100, -32000, 32000, 0, "the middle of an even range from 0"},
      {25, 0, 100, -32000, 32000, -16000, "a quarter"},
      {512, 0, 1023, -32000, 32000, 31, "512 * 64000 / 1023 = 32031.28"},
      {300, 0, 255, -32000, 32000, 32000, "above its own range"},
      {-1, 0, 255, -32000, 32000, -32000, "below its own range"},
      {7, 5, 5, -32000, 32000, 0, "a range without extent"},
      {7, 9, 5, -32000, 32000, 0, "a range the wrong way round"},
      {0, 0, 0, 0, 65535, 32767, "without extent on the scale at first"},
      {0, 0, 255, 0, 65535, 0, "lower end of the scale at first"},
      {255, 0, 255, 0, 65535, 65535, "upper end of the scale at first"},
      {1, 0, 255, 0, 65535, 257, "65535 is 255 times 257"},
      {kIntMin, kIntMin, kIntMax, kIntMin, kIntMax, kIntMin, "lower end of everything"},
      {kIntMax, kIntMin, kIntMax, kIntMin, kIntMax, kIntMax, "upper end of everything"},
      {0, kIntMin, kIntMax, kIntMin, kIntMax, 0, "everything onto itself"},
      {kIntMax, kIntMin, kIntMax, -32000, 32000, 32000, "upper end of 32 bits"},
      {10, 0, 20, 5, 5, 5, "a scale of one value"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ScaleAxis(row.value, row.minimum, row.maximum, row.lowest, row.highest), row.scaled)
        << row.why;
}

TEST(ScaleAxis, NeverFallsWhileTheAxisRises) {
  for (const std::int32_t top : {1, 2, 3, 254, 255, 1023, 4095}) {
    std::int32_t before = -32000;
    for (std::int32_t value = 0; value <= top; ++value) {
      const std::int32_t scaled = ScaleAxis(value, 0, top, -32000, 32000);
      EXPECT_GE(scaled, before) << value << " of " << top;
      before = scaled;
    }
    EXPECT_EQ(before, 32000);
  }
}

TEST(HatAngle, EightDirectionsAndTheMiddle) {
  const struct {
    std::int32_t x, y;
    std::uint32_t angle;
  } rows[] = {{0, -1, 0},     {1, -1, 4500},  {1, 0, 9000},    {1, 1, 13500},      {0, 1, 18000},
              {-1, 1, 22500}, {-1, 0, 27000}, {-1, -1, 31500}, {0, 0, 0xFFFFFFFFu}};
  for (const auto& row : rows)
    EXPECT_EQ(HatAngle(row.x, row.y), row.angle) << row.x << " " << row.y;
}

TEST(HatDirection, MoreThanHalfOfTheWayCounts) {
  const struct {
    std::int32_t minimum, maximum, value, direction;
  } rows[] = {{-1, 1, -1, -1},
              {-1, 1, 0, 0},
              {-1, 1, 1, 1},
              {0, 2, 0, -1},
              {0, 2, 1, 0},
              {0, 2, 2, 1},
              {-127, 127, 63, 0},
              {-127, 127, 64, 1},
              {-127, 127, -63, 0},
              {-127, 127, -64, -1},
              {0, 0, 0, 0},
              {0, 0, 5, 1},
              {0, 0, -5, -1},
              {kIntMin, kIntMax, kIntMin, -1},
              {kIntMin, kIntMax, 0, 0}};
  for (const auto& row : rows)
    EXPECT_EQ(HatDirection({true, row.minimum, row.maximum, 0}, row.value), row.direction)
        << row.minimum << ".." << row.maximum << " " << row.value;
}

DeviceLayout LayoutOf(const EvdevDescription& described) { return LayOut(described.Facts()); }

TEST(DeviceLayout, ButtonsAreNumberedByTheirCodes) {
  const struct {
    const char* what;
    void (*describe)(EvdevDescription&);
    std::uint32_t buttons;
    std::vector<std::pair<unsigned, std::uint8_t>> slots;
  } rows[] = {
      // 0x130, 131, 133, 134, 136, 137, 13A, 13B, 13C, 13D, 13E.
      {"a common pad",
       [](EvdevDescription& d) {
         d.Keys({BTN_THUMBR, BTN_A, BTN_B, BTN_X, BTN_Y, BTN_TL, BTN_TR, BTN_SELECT, BTN_START,
                 BTN_MODE, BTN_THUMBL});
       },
       11,
       {{BTN_A, 0}, {BTN_B, 1}, {BTN_C, kNoSlot}, {BTN_X, 2}, {BTN_MODE, 8}, {BTN_THUMBR, 10}}},
      {"twenty-four: 16 and 8",
       [](EvdevDescription& d) {
         d.Keys(BTN_TRIGGER, BTN_DEAD).Keys(BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY8);
       },
       24,
       {{BTN_TRIGGER, 0}, {BTN_DEAD, 15}, {BTN_TRIGGER_HAPPY1, 16}, {BTN_TRIGGER_HAPPY8, 23}}},
      {"forty",
       [](EvdevDescription& d) { d.Keys(BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY40); },
       40,
       {{BTN_TRIGGER_HAPPY40, 39}}},
      // 0x100 to 0x15F are 96, 0x2C0 to 0x2FF are 64 more: 160.
      {"a hundred and twenty-eight and no more",
       [](EvdevDescription& d) { d.Keys(0x100, 0x15F).Keys(0x2C0, 0x2FF); },
       128,
       {{0x100, 0}, {0x15F, 95}, {0x2C0, 96}, {0x2DF, 127}, {0x2E0, kNoSlot}}},
      {"a direction pad of buttons",
       [](EvdevDescription& d) {
         d.Keys({BTN_A, BTN_START}).Keys(BTN_DPAD_UP, BTN_DPAD_RIGHT);
       },
       6,
       {{BTN_DPAD_UP, 2}, {BTN_DPAD_RIGHT, 5}}},
      {"keys of a pad, behind its buttons",
       [](EvdevDescription& d) {
         d.Keys({KEY_MENU, KEY_BACK, KEY_RECORD, KEY_HOMEPAGE, BTN_A, BTN_B, BTN_TRIGGER_HAPPY1});
       },
       7,
       {{BTN_A, 0},
        {BTN_B, 1},
        {BTN_TRIGGER_HAPPY1, 2},
        {KEY_MENU, 3},
        {KEY_BACK, 4},
        {KEY_RECORD, 5},
        {KEY_HOMEPAGE, 6}}},
      {"no room for keys behind 96 and 32 buttons",
       [](EvdevDescription& d) { d.Keys({KEY_RECORD}).Keys(0x100, 0x15F).Keys(0x2C0, 0x2DF); },
       128,
       {{0x2DF, 127}, {KEY_RECORD, kNoSlot}}},
      {"a whole keyboard beside a pad is none of its buttons",
       [](EvdevDescription& d) {
         d.Keys(KEY_ESC, KEY_KPDOT).Keys({KEY_RECORD}).Keys(BTN_A, BTN_A + 15);
       },
       16,
       {{BTN_A, 0}, {KEY_A, kNoSlot}, {KEY_RECORD, kNoSlot}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EvdevDescription described;
    row.describe(described);
    const DeviceLayout layout = LayoutOf(described);
    EXPECT_EQ(layout.buttons, row.buttons);
    for (const auto& [code, slot] : row.slots) EXPECT_EQ(layout.buttonSlot[code], slot) << code;
    EXPECT_EQ(layout.hats, 0u);
  }
}

using Codes = std::array<int, kAxisSlots>;  // X, Y, Z, Rx, Ry, Rz, slider 0, slider 1

Codes CodesOf(const EvdevDescription& described) {
  const DeviceLayout layout = LayoutOf(described);
  Codes codes;
  std::uint32_t seated = 0;
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot) {
    codes[slot] = layout.axisCode[slot];
    if (codes[slot] < 0) continue;
    ++seated;
    EXPECT_EQ(layout.axisSlot[static_cast<unsigned>(codes[slot])], slot);
  }
  EXPECT_EQ(layout.axes, seated);
  return codes;
}

TEST(DeviceLayout, AxesAndSliders) {
  const struct {
    const char* what;
    std::vector<unsigned> axes;
    Codes codes;
  } rows[] = {
      {"none", {}, {-1, -1, -1, -1, -1, -1, -1, -1}},
      {"the six",
       {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ},
       {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RZ, -1, -1}},
      {"a pad whose triggers are gas and brake",
       {ABS_X, ABS_Y, ABS_Z, ABS_RZ, ABS_GAS, ABS_BRAKE},
       {ABS_X, ABS_Y, ABS_Z, -1, -1, ABS_RZ, ABS_GAS, ABS_BRAKE}},
      {"a flight stick",
       {ABS_X, ABS_Y, ABS_THROTTLE, ABS_RUDDER},
       {ABS_X, ABS_Y, -1, -1, -1, -1, ABS_THROTTLE, ABS_RUDDER}},
      {"a wheel with its pedals",
       {ABS_WHEEL, ABS_GAS, ABS_BRAKE},
       {ABS_WHEEL, -1, -1, -1, -1, -1, ABS_GAS, ABS_BRAKE}},
      {"a wheel whose favourite is taken",
       {ABS_X, ABS_WHEEL, ABS_GAS, ABS_BRAKE},
       {ABS_X, -1, ABS_WHEEL, -1, -1, -1, ABS_GAS, ABS_BRAKE}},
      {"all five and nothing else",
       {ABS_THROTTLE, ABS_RUDDER, ABS_WHEEL, ABS_GAS, ABS_BRAKE},
       {ABS_WHEEL, -1, ABS_BRAKE, -1, -1, ABS_RUDDER, ABS_THROTTLE, ABS_GAS}},
      {"more than there are seats",
       {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_THROTTLE, ABS_RUDDER, ABS_WHEEL, ABS_GAS,
        ABS_BRAKE},
       {ABS_X, ABS_Y, ABS_Z, ABS_RX, ABS_RY, ABS_RUDDER, ABS_THROTTLE, ABS_GAS}},
      {"axes that are none of a game device",
       {ABS_VOLUME, ABS_MISC, ABS_PRESSURE},
       {-1, -1, -1, -1, -1, -1, -1, -1}},
  };
  for (const auto& row : rows) {
    EvdevDescription described;
    for (const unsigned code : row.axes) described.Axes({code});
    EXPECT_EQ(CodesOf(described), row.codes) << row.what;
  }
}

TEST(DeviceLayout, FourHats) {
  EvdevDescription described;
  for (unsigned code = ABS_HAT0X; code <= ABS_HAT3Y; ++code) described.Axis(code, -1, 1);
  const DeviceLayout layout = LayoutOf(described);
  EXPECT_EQ(layout.hats, 4u);
  for (unsigned hat = 0; hat < 4; ++hat) {
    EXPECT_EQ(layout.hatCode[hat], static_cast<int>(ABS_HAT0X + 2 * hat));
    EXPECT_EQ(layout.hatSlot[ABS_HAT0X + 2 * hat], hat);
    EXPECT_EQ(layout.hatSlot[ABS_HAT0Y + 2 * hat], hat);
  }
}

TEST(DeviceLayout, HatsMoveUpWhereOneIsMissing) {
  EvdevDescription described;
  described.Axis(ABS_HAT1X, -1, 1).Axis(ABS_HAT1Y, -1, 1).Axis(ABS_HAT3Y, -1, 1);
  const DeviceLayout layout = LayoutOf(described);
  EXPECT_EQ(layout.hats, 2u);
  EXPECT_EQ(layout.hatCode[0], ABS_HAT1X);
  EXPECT_EQ(layout.hatCode[1], ABS_HAT3X);
  EXPECT_EQ(layout.hatCode[2], -1);
}

TEST(DeviceLayout, AnAxisThatGoesOneWayFromZeroIsNoHat) {
  EvdevDescription described;
  described.Axes({ABS_X, ABS_Y}).Axis(ABS_HAT0X, 0, 239).Axis(ABS_HAT1X, -1, 1);
  described.Axis(ABS_HAT1Y, -1, 1);
  const DeviceLayout layout = LayoutOf(described);
  EXPECT_EQ(layout.hats, 1u);
  EXPECT_EQ(layout.hatCode[0], ABS_HAT1X);
  EXPECT_EQ(layout.hatSlot[ABS_HAT0X], kNoSlot);
  // It is an axis like those that have no place of their own.
  EXPECT_EQ(layout.axes, 3u);
  EXPECT_EQ(layout.axisSlot[ABS_HAT0X], kFirstSliderSlot);
}

TEST(DeviceLayout, TheOtherAxisOfAHatStaysOneWhereItsPartnerIsNone) {
  EvdevDescription described;
  described.Axis(ABS_HAT0X, 0, 239).Axis(ABS_HAT0Y, -1, 1);
  const DeviceLayout layout = LayoutOf(described);
  EXPECT_EQ(layout.hats, 1u);
  EXPECT_EQ(layout.hatSlot[ABS_HAT0X], kNoSlot);
  EXPECT_EQ(layout.hatSlot[ABS_HAT0Y], 0);
}

TEST(DeviceLayout, ScalesThatAreToldAsHatsAreAxes) {
  EvdevDescription described;
  for (unsigned code = ABS_HAT0X; code <= ABS_HAT1Y; ++code) described.Axis(code, 0, 65535);
  const Codes codes = {-1, -1, ABS_HAT1X, ABS_HAT1Y, -1, -1, ABS_HAT0X, ABS_HAT0Y};
  EXPECT_EQ(CodesOf(described), codes);
  EXPECT_EQ(LayoutOf(described).hats, 0u);
}

}  // namespace
}  // namespace platform
