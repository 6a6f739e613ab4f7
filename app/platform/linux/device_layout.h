// Where each button, axis and hat of a kernel device stands in a DIJOYSTATE2. The rules, with their
// reasons, are told to users in docs/devices.md.
#pragma once

#include <linux/input.h>

#include <array>
#include <cstdint>

#include "app/platform/direct_input.h"
#include "app/platform/linux/device_facts.h"

namespace platform {

// lX, lY, lZ, lRx, lRy, lRz, and the two sliders.
constexpr std::uint32_t kAxisSlots = 8;
constexpr std::uint32_t kFirstSliderSlot = 6;
constexpr std::uint32_t kHatSlots = 4;
constexpr std::uint32_t kButtonSlots = 128;
constexpr std::uint8_t kNoSlot = 0xFF;

std::int32_t& AxisSlot(DIJOYSTATE2& state, std::uint32_t slot);

struct DeviceLayout {
  DeviceLayout();

  // From the kernel's codes; kNoSlot for a code that isn't shown.
  std::array<std::uint8_t, KEY_CNT> buttonSlot;
  std::array<std::uint8_t, ABS_CNT> axisSlot;
  std::array<std::uint8_t, ABS_CNT> hatSlot;  // of each axis of a hat that the device has

  // And back; -1 for a slot that is empty. A hat's code is that of its X axis.
  std::array<std::int16_t, kAxisSlots> axisCode;
  std::array<std::int16_t, kHatSlots> hatCode;

  std::uint32_t buttons = 0;
  std::uint32_t axes = 0;
  std::uint32_t hats = 0;
};

DeviceLayout LayOut(const DeviceFacts& facts);

// `value` of an axis that runs from `minimum` to `maximum`, on the scale lowest..highest: exact at
// both ends, and in the middle where both scales have one; rounded to the nearest between. A value
// outside is taken as the end; an axis without extent reads the middle. REQUIRES: lowest <=
// highest.
std::int32_t ScaleAxis(std::int32_t value, std::int32_t minimum, std::int32_t maximum,
                       std::int32_t lowest, std::int32_t highest);

// -1, 0 or 1: which way a hat's axis points. More than half of the way counts.
std::int32_t HatDirection(const AxisFacts& axis, std::int32_t value);

// The angle for two such directions (right and down positive), kPovCentred for none.
std::uint32_t HatAngle(std::int32_t x, std::int32_t y);

}  // namespace platform
