// What a busy pad of 8 buttons, all axes and one hat does next.
#pragma once

#include <cstdint>

#include "app/platform/recording/recording.h"
#include "tests/console/random.h"

namespace kelvaro {

// *held has the buttons that are down, a bit each.
inline platform::StateChange RandomChange(Random& random, std::uint32_t* held) {
  platform::StateChange change;
  change.hasButtons = random.OneIn(2);
  if (change.hasButtons) {
    *held ^= 1u << random.Below(8);
    for (std::uint32_t button = 0; button < 8; ++button) {
      if (*held >> button & 1) change.buttons.push_back(button + 1);
    }
  }
  if (random.OneIn(2)) {
    const platform::AxisName axis{static_cast<std::uint16_t>(random.Below(8)), 0};
    change.axes.emplace_back(axis, static_cast<std::int32_t>(random.Below(64001)) - 32000);
  }
  if (random.OneIn(4)) {
    change.povs.emplace_back(0, random.OneIn(3) ? platform::kPovCentred : random.Below(8) * 4500);
  }
  return change;
}

}  // namespace kelvaro
