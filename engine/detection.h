// Finding the one input that the user moves, for the mouse emulation.
#pragma once

#include <cstdint>

#include "engine/device_snapshot.h"

namespace kelvaro {

// True, with *result naming the input and its field offset, when one is moved: an axis at its very
// end, else a hat, else the axis that is pushed furthest, the first among equals. An axis counts
// from more than half of axisMax. A hat pushed left or right is kind 8, any other way, the
// diagonals included, kind 9. False, with *result untouched, when all is at rest.
bool DetectMouseAxis(std::int32_t axisMax, const DIJOYSTATE2& state, TriggerItem* result);

}  // namespace kelvaro
