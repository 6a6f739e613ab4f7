// What a profile says about the mouse emulation.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "engine/device_snapshot.h"
#include "foundation/relaxed.h"

namespace kelvaro {

// Changed under profileLock or mouseLock, whichever the changing side holds, and read by the timer
// and notification threads under the other: hence no plain members.
struct MouseSettings {
  Relaxed<std::int32_t> acceleration{0};          // stored only; the movement doesn't use it
  Relaxed<std::int32_t> movementDamper{5};        // percent, 0 to 50
  Relaxed<std::int32_t> movementSensitivity{15};  // 0 to 50
  Relaxed<std::int32_t> wheelDamper{5};           // percent, 0 to 50
  Relaxed<std::int32_t> wheelSensitivity{15};     // 0 to 50
  Relaxed<std::uint16_t> leftButton{0};           // index from 0
  Relaxed<std::uint16_t> middleButton{0};
  Relaxed<std::uint16_t> rightButton{0};
  Relaxed<std::uint64_t> leftMask{0};  // 0: not assigned
  Relaxed<std::uint64_t> middleMask{0};
  Relaxed<std::uint64_t> rightMask{0};
  // `value` is what AxisFieldOffset gives.
  Relaxed<TriggerItem> mouseX{kNoInput};
  Relaxed<TriggerItem> mouseY{kNoInput};
  Relaxed<TriggerItem> mouseWheel{kNoInput};
  Relaxed<bool> mouseAlwaysActive{false};
};

// What an input of the device does as a mouse. The values are the fields of the Mouse tab that show
// the inputs.
enum class MouseRole : std::uint32_t {
  None = 0,
  X = 1159,
  Y = 1160,
  LeftButton = 1161,
  MiddleButton = 1162,
  Wheel = 1163,
  RightButton = 1164,
};

// Where the input of a role stands in the settings: as an axis, or as a button.
struct MouseRoleInput {
  MouseRole role;
  Relaxed<TriggerItem> MouseSettings::*axis;      // null for a button
  Relaxed<std::uint16_t> MouseSettings::*button;  // null for an axis, as is the mask
  Relaxed<std::uint64_t> MouseSettings::*mask;
};

inline constexpr MouseRoleInput kMouseRoles[] = {
    {MouseRole::X, &MouseSettings::mouseX, nullptr, nullptr},
    {MouseRole::Y, &MouseSettings::mouseY, nullptr, nullptr},
    {MouseRole::Wheel, &MouseSettings::mouseWheel, nullptr, nullptr},
    {MouseRole::LeftButton, nullptr, &MouseSettings::leftButton, &MouseSettings::leftMask},
    {MouseRole::MiddleButton, nullptr, &MouseSettings::middleButton, &MouseSettings::middleMask},
    {MouseRole::RightButton, nullptr, &MouseSettings::rightButton, &MouseSettings::rightMask},
};

// Of a role other than None.
constexpr const MouseRoleInput& InputOf(MouseRole role) {
  return *std::find_if(std::begin(kMouseRoles), std::end(kMouseRoles),
                       [role](const MouseRoleInput& input) { return input.role == role; });
}

// The mask of a button by its index: a signed 32-bit one, shifted by index mod 32 and widened with
// its sign. So index 31 fills the upper half, and 32 and above wrap to the low bits. Kept as it is:
// buttons from 33 on serve in Triggers but not as mouse buttons.
constexpr std::uint64_t MouseButtonMask(std::uint16_t index) {
  const auto mask = static_cast<std::int32_t>(std::uint32_t{1} << (index % 32));
  return static_cast<std::uint64_t>(std::int64_t{mask});
}

}  // namespace kelvaro
