#include "app/platform/linux/device_layout.h"

#include <algorithm>
#include <cstdlib>

namespace platform {
namespace {

constexpr std::uint32_t kSlotOfX = 0;
constexpr std::uint32_t kSlotOfRz = 5;

// Controls that have no place of their own in the published state, in the order in which they are
// seated: the sliders first, then the favourite if nothing else sits there, then what is free.
struct Homeless {
  unsigned code;
  std::uint32_t favourite;
};
constexpr Homeless kHomeless[] = {{ABS_THROTTLE, kFirstSliderSlot},
                                  {ABS_GAS, kFirstSliderSlot},
                                  {ABS_RUDDER, kSlotOfRz},
                                  {ABS_BRAKE, kSlotOfRz},
                                  {ABS_WHEEL, kSlotOfX}};

// A hat points both ways from its rest at 0. An axis that doesn't is no hat: the kernel gives hats'
// codes to axes when it has run out of names.
bool IsHatAxis(const AxisFacts& axis) {
  return axis.present && (axis.minimum < 0 || axis.maximum <= 0);
}

}  // namespace

std::int32_t& AxisSlot(DIJOYSTATE2& state, std::uint32_t slot) {
  switch (slot) {
    case 0:
      return state.lX;
    case 1:
      return state.lY;
    case 2:
      return state.lZ;
    case 3:
      return state.lRx;
    case 4:
      return state.lRy;
    case 5:
      return state.lRz;
    default:
      return state.rglSlider[(slot - kFirstSliderSlot) % 2];
  }
}

DeviceLayout::DeviceLayout() {
  buttonSlot.fill(kNoSlot);
  axisSlot.fill(kNoSlot);
  hatSlot.fill(kNoSlot);
  axisCode.fill(-1);
  hatCode.fill(-1);
}

DeviceLayout LayOut(const DeviceFacts& facts) {
  DeviceLayout layout;
  const auto number = [&](unsigned first, unsigned end) {
    for (unsigned code = first; code < end && layout.buttons < kButtonSlots; ++code)
      if (facts.keys[code]) layout.buttonSlot[code] = static_cast<std::uint8_t>(layout.buttons++);
  };
  number(BTN_MISC, KEY_CNT);
  // The keys of a pad, such as "share" or "back", behind all buttons, whose numbers stand in
  // profiles. The keys of a keyboard that shares the pad's node are not the pad's.
  if (!HasLetters(facts)) number(KEY_ESC, BTN_MISC);

  const auto seat = [&](unsigned code, std::uint32_t slot) {
    layout.axisCode[slot] = static_cast<std::int16_t>(code);
    layout.axisSlot[code] = static_cast<std::uint8_t>(slot);
    ++layout.axes;
  };
  const auto isFree = [&](std::uint32_t slot) { return layout.axisCode[slot] < 0; };
  for (unsigned code = ABS_X; code <= ABS_RZ; ++code)
    if (facts.HasAxis(code)) seat(code, code - ABS_X);
  const auto seatHomeless = [&](unsigned code, std::uint32_t favourite) {
    // The pair of the stick last, so that it stays free for a pair.
    const std::uint32_t wishes[] = {
        kFirstSliderSlot, kFirstSliderSlot + 1, favourite, 2, 3, 4, 5, 1, 0};
    const auto* slot = std::find_if(std::begin(wishes), std::end(wishes), isFree);
    if (slot != std::end(wishes)) seat(code, *slot);
  };
  for (const Homeless& homeless : kHomeless)
    if (facts.HasAxis(homeless.code)) seatHomeless(homeless.code, homeless.favourite);

  for (unsigned code = ABS_HAT0X; code <= ABS_HAT3X; code += 2) {
    bool isHat = false;
    for (const unsigned axis : {code, code + 1}) {
      if (IsHatAxis(facts.axes[axis])) {
        layout.hatSlot[axis] = static_cast<std::uint8_t>(layout.hats);
        isHat = true;
      } else if (facts.HasAxis(axis)) {
        seatHomeless(axis, kFirstSliderSlot);
      }
    }
    if (isHat) layout.hatCode[layout.hats++] = static_cast<std::int16_t>(code);
  }
  return layout;
}

std::int32_t ScaleAxis(std::int32_t value, std::int32_t minimum, std::int32_t maximum,
                       std::int32_t lowest, std::int32_t highest) {
  // Two factors below 2^32 and half of one more: the whole fits in 64 bits.
  const auto span = static_cast<std::uint64_t>(std::int64_t{highest} - lowest);
  if (maximum <= minimum)
    return static_cast<std::int32_t>(lowest + static_cast<std::int64_t>(span / 2));
  const auto extent = static_cast<std::uint64_t>(std::int64_t{maximum} - minimum);
  const auto offset =
      static_cast<std::uint64_t>(std::int64_t{std::clamp(value, minimum, maximum)} - minimum);
  return static_cast<std::int32_t>(
      lowest + static_cast<std::int64_t>((offset * span + extent / 2) / extent));
}

std::int32_t HatDirection(const AxisFacts& axis, std::int32_t value) {
  const std::int64_t extent = std::int64_t{axis.maximum} - axis.minimum;
  // Twice the way from the middle, so that the middle of an odd range is a number too.
  const std::int64_t way =
      extent > 0 ? 2 * std::int64_t{value} - axis.minimum - axis.maximum : std::int64_t{value};
  if (2 * std::abs(way) <= std::max<std::int64_t>(extent, 0)) return 0;
  return way < 0 ? -1 : 1;
}

std::uint32_t HatAngle(std::int32_t x, std::int32_t y) {
  constexpr std::uint32_t kAngles[3][3] = {
      {31500, 0, 4500}, {27000, kPovCentred, 9000}, {22500, 18000, 13500}};
  return kAngles[std::clamp(y, -1, 1) + 1][std::clamp(x, -1, 1) + 1];
}

}  // namespace platform
