#include "engine/device_snapshot.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "tests/engine/axes.h"

namespace kelvaro {
namespace {

// The 32 axis fields, by kind and bank.
struct AxisField {
  std::uint16_t kind;
  std::uint16_t index;
  std::size_t offset;
};

constexpr AxisField kAxisFields[] = {
    {0, 0, offsetof(DIJOYSTATE2, lX)},         {1, 0, offsetof(DIJOYSTATE2, lY)},
    {2, 0, offsetof(DIJOYSTATE2, lZ)},         {3, 0, offsetof(DIJOYSTATE2, lRx)},
    {4, 0, offsetof(DIJOYSTATE2, lRy)},        {5, 0, offsetof(DIJOYSTATE2, lRz)},
    {6, 0, offsetof(DIJOYSTATE2, rglSlider)},  {7, 0, offsetof(DIJOYSTATE2, rglSlider) + 4},
    {0, 1, offsetof(DIJOYSTATE2, lVX)},        {1, 1, offsetof(DIJOYSTATE2, lVY)},
    {2, 1, offsetof(DIJOYSTATE2, lVZ)},        {3, 1, offsetof(DIJOYSTATE2, lVRx)},
    {4, 1, offsetof(DIJOYSTATE2, lVRy)},       {5, 1, offsetof(DIJOYSTATE2, lVRz)},
    {6, 1, offsetof(DIJOYSTATE2, rglVSlider)}, {7, 1, offsetof(DIJOYSTATE2, rglVSlider) + 4},
    {0, 2, offsetof(DIJOYSTATE2, lAX)},        {1, 2, offsetof(DIJOYSTATE2, lAY)},
    {2, 2, offsetof(DIJOYSTATE2, lAZ)},        {3, 2, offsetof(DIJOYSTATE2, lARx)},
    {4, 2, offsetof(DIJOYSTATE2, lARy)},       {5, 2, offsetof(DIJOYSTATE2, lARz)},
    {6, 2, offsetof(DIJOYSTATE2, rglASlider)}, {7, 2, offsetof(DIJOYSTATE2, rglASlider) + 4},
    {0, 3, offsetof(DIJOYSTATE2, lFX)},        {1, 3, offsetof(DIJOYSTATE2, lFY)},
    {2, 3, offsetof(DIJOYSTATE2, lFZ)},        {3, 3, offsetof(DIJOYSTATE2, lFRx)},
    {4, 3, offsetof(DIJOYSTATE2, lFRy)},       {5, 3, offsetof(DIJOYSTATE2, lFRz)},
    {6, 3, offsetof(DIJOYSTATE2, rglFSlider)}, {7, 3, offsetof(DIJOYSTATE2, rglFSlider) + 4},
};
static_assert(sizeof kAxisFields / sizeof kAxisFields[0] == 32);

void Put(DIJOYSTATE2* state, const AxisField& field, std::int32_t value) {
  std::memcpy(reinterpret_cast<char*>(state) + field.offset, &value, sizeof value);
}

bool SameBytes(const DIJOYSTATE2& a, const DIJOYSTATE2& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// Every byte 0x55.
DIJOYSTATE2 FilledState() {
  unsigned char bytes[sizeof(DIJOYSTATE2)];
  std::memset(bytes, 0x55, sizeof bytes);
  return std::bit_cast<DIJOYSTATE2>(bytes);
}

TEST(ButtonMaskFromState, EachOfTheFirst64ButtonsHasItsBit) {
  for (std::uint32_t n = 0; n < 64; ++n) {
    DIJOYSTATE2 state;
    state.rgbButtons[n] = 128;
    EXPECT_EQ(ButtonMaskFromState(state), std::uint64_t{1} << n) << "button " << n + 1;
  }
}

TEST(ButtonMaskFromState, ButtonsFrom65OnChangeTheStateButNeverTheMask) {
  const DIJOYSTATE2 rest;
  for (std::uint32_t n = 64; n < 128; ++n) {
    DIJOYSTATE2 state;
    state.rgbButtons[n] = 128;
    EXPECT_EQ(ButtonMaskFromState(state), 0u) << "button " << n + 1;
    EXPECT_FALSE(SameBytes(state, rest)) << "button " << n + 1;
  }
}

TEST(ButtonMaskFromState, AnyByteButZeroIsPressed) {
  for (int byte = 0; byte < 256; ++byte) {
    DIJOYSTATE2 state;
    state.rgbButtons[2] = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(ButtonMaskFromState(state), byte == 0 ? 0u : 4u) << "byte " << byte;
  }
}

// Of the low 16 bits, whatever the others are.
TEST(PovDirectionsFromAngle, EveryAngleLiesInItsSector) {
  const struct {
    std::uint32_t first, last;
    int directions;
  } sectors[] = {
      {0, 4499, PovUp},        {4500, 6000, PovUp | PovRight},
      {6001, 11999, PovRight}, {12000, 13500, PovRight | PovDown},
      {13501, 22499, PovDown}, {22500, 24000, PovDown | PovLeft},
      {24001, 29999, PovLeft}, {30000, 31500, PovLeft | PovUp},
      {31501, 65534, PovUp},   {65535, 65535, 0},
  };
  std::uint32_t next = 0;
  for (const auto& sector : sectors) {
    ASSERT_EQ(sector.first, next) << "the sectors leave a gap";
    for (std::uint32_t a = sector.first; a <= sector.last; ++a) {
      ASSERT_EQ(PovDirectionsFromAngle(a), sector.directions) << a;
      ASSERT_EQ(PovDirectionsFromAngle(0xFFFF0000u | a), sector.directions) << a;
      ASSERT_EQ(PovDirectionsFromAngle(0x00010000u | a), sector.directions) << a;
    }
    next = sector.last + 1;
  }
  EXPECT_EQ(next, 65536u);
}

TEST(AxisValue, ReadsTheFieldOfItsKindAndBankAndNoOther) {
  for (const AxisField& field : kAxisFields) {
    DIJOYSTATE2 state;
    Put(&state, field, INT32_MIN);  // not scaled
    for (const AxisField& asked : kAxisFields) {
      EXPECT_EQ(AxisValue(state, asked.kind, asked.index), &asked == &field ? INT32_MIN : 0)
          << "set " << field.kind << "/" << field.index << ", asked " << asked.kind << "/"
          << asked.index;
    }
  }
}

TEST(AxisValue, IsZeroForKindsAndBanksThatAreNone) {
  const DIJOYSTATE2 state = FilledState();
  EXPECT_EQ(AxisValue(state, 7, 3), 0x55555555);
  EXPECT_EQ(AxisValue(state, 8, 0), 0);
  EXPECT_EQ(AxisValue(state, 9, 3), 0);
  EXPECT_EQ(AxisValue(state, 65535, 0), 0);
  EXPECT_EQ(AxisValue(state, 0, 4), 0);
  EXPECT_EQ(AxisValue(state, 7, 65535), 0);
}

TEST(AxisState, TurnsAboveHalfRangeOnEveryKindOfEveryBank) {
  static_assert(AxisCentre == 0 && AxisNeg == 1 && AxisPos == 2);
  const struct {
    std::int32_t value;
    int state;
  } rows[] = {
      {-32000, AxisNeg}, {-16001, AxisNeg},    {-16000, AxisCentre}, {-1, AxisCentre},
      {0, AxisCentre},   {1, AxisCentre},      {16000, AxisCentre},  {16001, AxisPos},
      {32000, AxisPos},  {INT32_MIN, AxisNeg}, {INT32_MAX, AxisPos},
  };
  for (const AxisField& field : kAxisFields) {
    for (const auto& row : rows) {
      DIJOYSTATE2 state;
      Put(&state, field, row.value);
      EXPECT_EQ(AxisState(kAxisMax, state, field.kind, field.index), row.state)
          << field.kind << "/" << field.index << " at " << row.value;
    }
  }
}

TEST(AxisState, IsCentreForWhatIsNoAxis) {
  const DIJOYSTATE2 state = FilledState();
  EXPECT_EQ(AxisState(kAxisMax, state, 8, 0), AxisCentre);
  EXPECT_EQ(AxisState(kAxisMax, state, 0, 4), AxisCentre);
}

TEST(AxisState, FollowsTheLimitThatIsHandedIn) {
  DIJOYSTATE2 state;
  state.lX = 51;
  EXPECT_EQ(AxisState(100, state, 0, 0), AxisPos);
  EXPECT_EQ(AxisState(101, state, 0, 0), AxisPos);
  EXPECT_EQ(AxisState(102, state, 0, 0), AxisCentre);
  state.lX = 1;
  EXPECT_EQ(AxisState(1, state, 0, 0), AxisPos);
}

TEST(AxisThreshold, IsHalfOfTheLimitRoundedDown) {
  EXPECT_EQ(AxisThreshold(32000), 16000);
  EXPECT_EQ(AxisThreshold(32001), 16000);
  EXPECT_EQ(AxisThreshold(101), 50);
  EXPECT_EQ(AxisThreshold(1), 0);
  EXPECT_EQ(AxisThreshold(0), 0);
  EXPECT_EQ(AxisThreshold(2147483647), 1073741823);
}

TEST(AxisFieldOffset, IsThePlaceOfTheFieldForAll32Axes) {
  for (const AxisField& field : kAxisFields) {
    TriggerItem item{field.kind, field.index, 0xBEEF};
    AxisFieldOffset(&item);
    EXPECT_EQ(item.value, field.offset) << field.kind << "/" << field.index;
    EXPECT_EQ(item.kind, field.kind);
    EXPECT_EQ(item.index, field.index);
  }
}

TEST(AxisFieldOffset, IsThePlaceOfTheHatForBothWaysToUseOne) {
  for (const std::uint16_t kind : {input_kind::kPov, input_kind::kPovVertical}) {
    for (std::uint16_t hat = 0; hat < 4; ++hat) {
      TriggerItem item{kind, hat, 0};
      AxisFieldOffset(&item);
      EXPECT_EQ(item.value, offsetof(DIJOYSTATE2, rgdwPOV) + sizeof(std::uint32_t) * hat);
    }
  }
}

TEST(AxisFieldOffset, DoesNotCheckTheNumberOfAHat) {
  TriggerItem item{8, 5, 0};
  AxisFieldOffset(&item);
  EXPECT_EQ(item.value, 52);  // 32 + 4 * 5
}

TEST(AxisFieldOffset, LeavesTheValueWhereThereIsNoField) {
  const TriggerItem items[] = {{10, 0, 77}, {11, 0, 77},    {65535, 0, 77},
                               {0, 4, 77},  {7, 65535, 77}, {3, 5, 77}};
  for (TriggerItem item : items) {
    AxisFieldOffset(&item);
    EXPECT_EQ(item.value, 77) << item.kind << "/" << item.index;
  }
}

TEST(TriggerItem, IsTheSameInputWhateverTheDirection) {
  const TriggerItem item{8, 2, PovUp};
  EXPECT_TRUE(item.SameInput({8, 2, PovDown}));
  EXPECT_FALSE(item.SameInput({8, 1, PovUp}));
  EXPECT_FALSE(item.SameInput({7, 2, PovUp}));
}

TEST(CountButtons, CountsTheBits) {
  EXPECT_EQ(CountButtons(0), 0u);
  EXPECT_EQ(CountButtons(5), 2u);
  EXPECT_EQ(CountButtons(0x8000000000000000u), 1u);
  EXPECT_EQ(CountButtons(0xFFFFFFFF80000000u), 33u);
  EXPECT_EQ(CountButtons(0xFFFFFFFFFFFFFFFFu), 64u);
}

TEST(DeviceSnapshot, IsAllZeroWhenNew) {
  const DeviceSnapshot snapshot;
  EXPECT_EQ(snapshot.dispatchButtons, 0u);
  EXPECT_EQ(snapshot.previousButtons, 0u);
  EXPECT_EQ(snapshot.currentButtons, 0u);
  for (int hat = 0; hat < 4; ++hat) {
    EXPECT_EQ(snapshot.povDirections[hat], 0);
    EXPECT_EQ(snapshot.previousPovDirections[hat], 0);
  }
  const unsigned char zeros[sizeof(DIJOYSTATE2)] = {};
  EXPECT_EQ(std::memcmp(&snapshot.state, zeros, sizeof zeros), 0);
  EXPECT_EQ(std::memcmp(&snapshot.previousState, zeros, sizeof zeros), 0);
}

DIJOYSTATE2 BusyState() {
  DIJOYSTATE2 state;
  state.lX = 1;
  state.rglFSlider[1] = -2;  // the last field
  state.rgbButtons[1] = 128;
  state.rgbButtons[63] = 1;  // they add up
  state.rgbButtons[127] = 128;
  state.rgdwPOV[0] = 0xFFFFFFFF;
  state.rgdwPOV[1] = 9000;
  state.rgdwPOV[2] = 31500;
  state.rgdwPOV[3] = 18000;
  return state;
}

TEST(UpdateSnapshot, DerivesMaskAndHatsFromTheWholeState) {
  const DIJOYSTATE2 state = BusyState();
  DeviceSnapshot snapshot;
  snapshot.dispatchButtons = 0x10;
  UpdateSnapshot(&snapshot, state);
  EXPECT_TRUE(SameBytes(snapshot.state, state));
  EXPECT_EQ(snapshot.currentButtons, 0x8000000000000002u);
  EXPECT_EQ(snapshot.dispatchButtons, 0x8000000000000002u);
  EXPECT_EQ(snapshot.povDirections[0], 0);
  EXPECT_EQ(snapshot.povDirections[1], PovRight);
  EXPECT_EQ(snapshot.povDirections[2], PovLeft | PovUp);
  EXPECT_EQ(snapshot.povDirections[3], PovDown);
}

TEST(UpdateSnapshot, LeavesThePreviousStateAlone) {
  DeviceSnapshot snapshot;
  snapshot.previousButtons = 7;
  snapshot.previousPovDirections[0] = PovDown;
  snapshot.previousPovDirections[3] = PovLeft;
  snapshot.previousState.lY = 4;
  UpdateSnapshot(&snapshot, BusyState());
  EXPECT_EQ(snapshot.previousButtons, 7u);
  EXPECT_EQ(snapshot.previousPovDirections[0], PovDown);
  EXPECT_EQ(snapshot.previousPovDirections[1], 0);
  EXPECT_EQ(snapshot.previousPovDirections[3], PovLeft);
  EXPECT_EQ(snapshot.previousState.lX, 0);
  EXPECT_EQ(snapshot.previousState.lY, 4);
}

TEST(RollSnapshot, MakesTheStateThePreviousOneAndLeavesDispatchButtons) {
  DeviceSnapshot snapshot;
  UpdateSnapshot(&snapshot, BusyState());
  snapshot.dispatchButtons = 0x20;
  RollSnapshot(&snapshot);
  EXPECT_EQ(snapshot.dispatchButtons, 0x20u);
  EXPECT_EQ(snapshot.previousButtons, 0x8000000000000002u);
  EXPECT_EQ(snapshot.previousPovDirections[0], 0);
  EXPECT_EQ(snapshot.previousPovDirections[1], PovRight);
  EXPECT_EQ(snapshot.previousPovDirections[2], PovLeft | PovUp);
  EXPECT_EQ(snapshot.previousPovDirections[3], PovDown);
  EXPECT_TRUE(SameBytes(snapshot.previousState, BusyState()));
  EXPECT_EQ(snapshot.currentButtons, 0x8000000000000002u);
  EXPECT_TRUE(SameBytes(snapshot.state, BusyState()));
}

}  // namespace
}  // namespace kelvaro
