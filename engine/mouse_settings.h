// What a profile says about the mouse emulation.
#pragma once

#include <atomic>
#include <cstdint>

#include "engine/device_snapshot.h"
#include "foundation/relaxed.h"

namespace kelvaro {

// One word instead of three, so that a reader never sees the kind of one input with the offset of
// another. Read it whole and write it whole.
template <>
class Relaxed<TriggerItem> {
 public:
  Relaxed(TriggerItem initial = {}) : packed(Pack(initial)) {}  // NOLINT: stands in for a plain one
  Relaxed(const Relaxed& other) : Relaxed(static_cast<TriggerItem>(other)) {}
  Relaxed& operator=(const Relaxed& other) { return *this = static_cast<TriggerItem>(other); }
  Relaxed& operator=(TriggerItem next) {
    packed.store(Pack(next), std::memory_order_relaxed);
    return *this;
  }
  operator TriggerItem() const {  // NOLINT
    const std::uint64_t bits = packed.load(std::memory_order_relaxed);
    return {static_cast<std::uint16_t>(bits), static_cast<std::uint16_t>(bits >> 16),
            static_cast<std::uint16_t>(bits >> 32)};
  }

 private:
  static std::uint64_t Pack(TriggerItem item) {
    return item.kind | std::uint64_t{item.index} << 16 | std::uint64_t{item.value} << 32;
  }

  std::atomic<std::uint64_t> packed;
};

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
  Relaxed<TriggerItem> mouseX{TriggerItem{input_kind::kNone, 0, 0}};
  Relaxed<TriggerItem> mouseY{TriggerItem{input_kind::kNone, 0, 0}};
  Relaxed<TriggerItem> mouseWheel{TriggerItem{input_kind::kNone, 0, 0}};
  Relaxed<bool> mouseAlwaysActive{false};
};

// The mask of a button by its index: a signed 32-bit one, shifted by index mod 32 and widened with
// its sign. So index 31 fills the upper half, and 32 and above wrap to the low bits. Kept as it is:
// buttons from 33 on serve in Triggers but not as mouse buttons.
std::uint64_t MouseButtonMask(std::uint16_t index);

}  // namespace kelvaro
