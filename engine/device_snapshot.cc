#include "engine/device_snapshot.h"

#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace kelvaro {
namespace {

// Where the eight axis fields of a bank begin; they stand side by side.
constexpr std::size_t kBankOffsets[kBanks] = {offsetof(DIJOYSTATE2, lX), offsetof(DIJOYSTATE2, lVX),
                                              offsetof(DIJOYSTATE2, lAX),
                                              offsetof(DIJOYSTATE2, lFX)};

static_assert(offsetof(DIJOYSTATE2, rglSlider) == kBankOffsets[0] + 24);
static_assert(offsetof(DIJOYSTATE2, rglVSlider) == kBankOffsets[1] + 24);
static_assert(offsetof(DIJOYSTATE2, rglASlider) == kBankOffsets[2] + 24);
static_assert(offsetof(DIJOYSTATE2, rglFSlider) == kBankOffsets[3] + 24);

bool IsAxis(std::uint16_t kind, std::uint16_t index) {
  return kind <= input_kind::kSliderB && index < kBanks;
}

std::size_t AxisOffset(std::uint16_t kind, std::uint16_t index) {
  return kBankOffsets[index] + sizeof(std::int32_t) * kind;
}

}  // namespace

void UpdateSnapshot(DeviceSnapshot* snapshot, const DIJOYSTATE2& state) {
  snapshot->state = state;
  snapshot->currentButtons = ButtonMaskFromState(state);
  snapshot->dispatchButtons = snapshot->currentButtons;
  for (std::size_t hat = 0; hat < kHats; ++hat) {
    snapshot->povDirections[hat] = PovDirectionsFromAngle(state.rgdwPOV[hat]);
  }
}

void RollSnapshot(DeviceSnapshot* snapshot) {
  snapshot->previousButtons = snapshot->currentButtons;
  std::memcpy(snapshot->previousPovDirections, snapshot->povDirections,
              sizeof snapshot->povDirections);
  snapshot->previousState = snapshot->state;
}

std::uint64_t ButtonMaskFromState(const DIJOYSTATE2& state) {
  std::uint64_t mask = 0;
  for (std::uint32_t n = 0; n < 64; ++n) {
    if (state.rgbButtons[n] != 0) mask |= std::uint64_t{1} << n;
  }
  return mask;
}

std::uint8_t PovDirectionsFromAngle(std::uint32_t angle) {
  const std::uint32_t a = angle & 0xFFFF;
  if (a == 0xFFFF) return 0;
  if (a < 4500 || a > 31500) return PovUp;
  if (a <= 6000) return PovUp | PovRight;
  if (a < 12000) return PovRight;
  if (a <= 13500) return PovRight | PovDown;
  if (a < 22500) return PovDown;
  if (a <= 24000) return PovDown | PovLeft;
  if (a < 30000) return PovLeft;
  return PovLeft | PovUp;
}

std::int32_t AxisValue(const DIJOYSTATE2& state, std::uint16_t kind, std::uint16_t index) {
  if (!IsAxis(kind, index)) return 0;
  std::int32_t value;
  std::memcpy(&value, reinterpret_cast<const char*>(&state) + AxisOffset(kind, index),
              sizeof value);
  return value;
}

std::int32_t AxisThreshold(std::int32_t axisMax) {
  return static_cast<std::int32_t>(std::int64_t{axisMax} * 50 / 100);
}

std::uint8_t AxisState(std::int32_t axisMax, const DIJOYSTATE2& state, std::uint16_t kind,
                       std::uint16_t index) {
  const std::int64_t value = AxisValue(state, kind, index);
  if (std::abs(value) <= AxisThreshold(axisMax)) return AxisCentre;
  return value < 1 ? AxisNeg : AxisPos;
}

void AxisFieldOffset(TriggerItem* item) {
  if (IsAxis(item->kind, item->index)) {
    item->value = static_cast<std::uint16_t>(AxisOffset(item->kind, item->index));
  } else if (item->kind == input_kind::kPov || item->kind == input_kind::kPovVertical) {
    item->value =
        static_cast<std::uint16_t>(offsetof(DIJOYSTATE2, rgdwPOV) + std::size_t{4} * item->index);
  }
}

TriggerItem MouseInput(std::uint16_t kind, std::uint16_t index) {
  TriggerItem item{.kind = kind, .index = index};
  AxisFieldOffset(&item);
  return item;
}

std::uint32_t CountButtons(std::uint64_t mask) {
  return static_cast<std::uint32_t>(std::popcount(mask));
}

}  // namespace kelvaro
