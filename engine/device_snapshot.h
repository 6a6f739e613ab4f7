// One polled device state with what the engine works on: a button mask, the directions of four
// hats, and for any axis which way it is pushed. Plain computation; no device is touched here.
#pragma once

#include <cstdint>

#include "app/platform/direct_input.h"

namespace kelvaro {

using platform::DIJOYSTATE2;

// Direction bits of a hat; 0 is centred.
constexpr std::uint8_t PovLeft = 1;
constexpr std::uint8_t PovUp = 2;
constexpr std::uint8_t PovRight = 4;
constexpr std::uint8_t PovDown = 8;

constexpr std::uint16_t kBanks = 4;  // of axes
constexpr std::uint16_t kHats = 4;

// TriggerItem kinds. 0 to 7 are the axis kinds, in the order of the fields of DIJOYSTATE2.
namespace input_kind {
constexpr std::uint16_t kAxisX = 0;
constexpr std::uint16_t kSliderB = 7;  // the last axis kind
constexpr std::uint16_t kPov = 8;  // in a Trigger: with direction bits; for the mouse: left-right
constexpr std::uint16_t kPovVertical = 9;  // for the mouse only: a hat used up-down
constexpr std::uint16_t kButton = 10;      // in detection only
constexpr std::uint16_t kNone = 11;
}  // namespace input_kind

// Results of AxisState, and the wanted direction of an axis item.
constexpr std::uint8_t AxisCentre = 0;
constexpr std::uint8_t AxisNeg = 1;
constexpr std::uint8_t AxisPos = 2;

// Names one input that is not a button. kind: see input_kind. index: the bank of an axis (0
// position, 1 velocity, 2 acceleration, 3 force) or the number of a hat, 0 to 3. value: in a
// Trigger the wanted direction; in the mouse emulation the byte offset of the field in DIJOYSTATE2.
struct TriggerItem {
  std::uint16_t kind{};
  std::uint16_t index{};
  std::uint16_t value{};

  // Whether both name the same input, whatever the direction.
  bool SameInput(const TriggerItem& other) const {
    return kind == other.kind && index == other.index;
  }
};

constexpr TriggerItem kNoInput{.kind = input_kind::kNone};

// Touched by the notification thread only, inside a dispatch.
struct DeviceSnapshot {
  std::uint64_t dispatchButtons = 0;  // what the Controls see: the mouse may have taken bits out
  std::uint64_t previousButtons = 0;
  std::uint64_t currentButtons = 0;
  std::uint8_t povDirections[kHats] = {};
  std::uint8_t previousPovDirections[kHats] = {};
  DIJOYSTATE2 state;
  DIJOYSTATE2 previousState;
};

void UpdateSnapshot(DeviceSnapshot* snapshot, const DIJOYSTATE2& state);
// Makes the state being handled the previous one; dispatchButtons stays.
void RollSnapshot(DeviceSnapshot* snapshot);

// Bit n set: rgbButtons[n] isn't 0, for n 0 to 63. Higher buttons have no bit.
std::uint64_t ButtonMaskFromState(const DIJOYSTATE2& state);

// Direction bits of one hat. angle: hundredths of a degree; only the low 16 bits count, and 65535
// there means centred. The diagonals are 15 degrees wide and lie beside the 45 degree mark. That
// is wanted.
std::uint8_t PovDirectionsFromAngle(std::uint32_t angle);

// The field of an axis kind and bank, as it stands; 0 for a kind above 7 or an index above 3.
std::int32_t AxisValue(const DIJOYSTATE2& state, std::uint16_t kind, std::uint16_t index);

// AxisCentre, AxisNeg or AxisPos: pushed by more than half of axisMax, rounded down.
std::uint8_t AxisState(std::int32_t axisMax, const DIJOYSTATE2& state, std::uint16_t kind,
                       std::uint16_t index);
std::int32_t AxisThreshold(std::int32_t axisMax);

// Fills item->value with the byte offset of the item's field in DIJOYSTATE2. Unchanged for kinds
// above 9, and for an axis with an index above 3. A hat's index isn't checked.
void AxisFieldOffset(TriggerItem* item);

// The input of the mouse emulation with that kind and index, its offset filled in.
TriggerItem MouseInput(std::uint16_t kind, std::uint16_t index = 0);

// Number of bits set.
std::uint32_t CountButtons(std::uint64_t mask);

}  // namespace kelvaro
