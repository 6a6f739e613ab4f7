// The arithmetic of the mouse emulation, apart from its state: how far from rest an input starts to
// count, what one poll adds to an accumulator, and which input a detection finds.
#pragma once

#include <cstdint>

#include "engine/device_snapshot.h"

namespace kelvaro {

// How one pointer axis or the wheel answers to an axis of the device.
struct MouseCurve {
  std::int32_t deadZone{};  // axis units; up to it, nothing counts
  double span = 1.0;        // axis units from the dead zone to the limit
  double gain = 1.0;        // weight of the square
};

constexpr std::int32_t kMouseSliderEnd = 50;  // of each of the four sliders; they begin at 0

// The factor of a sensitivity: the slider's position plus 2, so that none makes the pointer stand
// still.
constexpr std::int32_t MouseFactor(std::int32_t position) { return position + 2; }

// For a dead zone and a factor as ControlEngine holds them.
MouseCurve MakeMouseCurve(std::int32_t axisMax, std::int32_t deadZone, std::int32_t factor);

// The dead zone of a damper at `position` percent. 5 gives 1599 of 32000, not 1600: the hundredth
// is a single-precision one, a little below 0.01.
std::int32_t MouseDeadZone(std::int32_t position, std::int32_t axisMax);

// The accumulator, in counts, after one more poll. A hat gives one count or none, and an axis in
// the dead zone none; both drop what had been waiting. `input.value` is the offset of the field; an
// input outside of the state is at rest.
double NextAccumulated(const TriggerItem& input, const DIJOYSTATE2& state, const MouseCurve& curve,
                       double accumulated);

// Finds the one input that the user moves. True, with *result naming the input and its field
// offset, when one is moved: an axis at its very end, else a hat, else the axis that is pushed
// furthest, the first among equals. An axis counts from more than half of axisMax. A hat pushed
// left or right is kind 8, any other way, the diagonals included, kind 9. False, with *result
// untouched, when all is at rest.
bool DetectMouseAxis(std::int32_t axisMax, const DIJOYSTATE2& state, TriggerItem* result);

}  // namespace kelvaro
