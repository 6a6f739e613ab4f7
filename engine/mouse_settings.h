// What a profile says about the mouse emulation.
#pragma once

#include <cstdint>

#include "engine/device_snapshot.h"
#include "foundation/relaxed.h"

namespace kelvaro {

struct MouseSettings {
  std::int32_t acceleration = 0;          // stored only; the movement doesn't use it
  std::int32_t movementDamper = 5;        // percent, 0 to 50
  std::int32_t movementSensitivity = 15;  // 0 to 50
  std::int32_t wheelDamper = 5;           // percent, 0 to 50
  std::int32_t wheelSensitivity = 15;     // 0 to 50
  std::uint16_t leftButton = 0;           // index from 0
  std::uint16_t middleButton = 0;
  std::uint16_t rightButton = 0;
  std::uint64_t leftMask = 0;  // 0: not assigned
  std::uint64_t middleMask = 0;
  std::uint64_t rightMask = 0;
  TriggerItem mouseX{input_kind::kNone, 0, 0};
  TriggerItem mouseY{input_kind::kNone, 0, 0};
  TriggerItem mouseWheel{input_kind::kNone, 0, 0};
  Relaxed<bool> mouseAlwaysActive{false};  // read across threads without a lock
};

// The mask of a button by its index: a signed 32-bit one, shifted by index mod 32 and widened with
// its sign. So index 31 fills the upper half, and 32 and above wrap to the low bits. Kept as it is:
// buttons from 33 on serve in Triggers but not as mouse buttons.
std::uint64_t MouseButtonMask(std::uint16_t index);

}  // namespace kelvaro
