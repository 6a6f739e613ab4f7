// Whole notches out of wheel counts, 120 to a notch, for readers that know nothing finer. What is
// left over stays for the next time, with its sign. Any thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace platform {

constexpr std::int32_t kWheelCountsPerNotch = 120;

class WheelNotches {
 public:
  // Notches that `counts` more make full, positive away from the user.
  std::int32_t Add(std::int32_t counts) {
    std::int32_t before = remainder.load(std::memory_order_relaxed);
    for (;;) {
      const std::int64_t total = std::int64_t{before} + counts;
      const auto after = static_cast<std::int32_t>(total % kWheelCountsPerNotch);
      if (remainder.compare_exchange_weak(before, after, std::memory_order_relaxed))
        return static_cast<std::int32_t>(total / kWheelCountsPerNotch);
    }
  }

 private:
  std::atomic<std::int32_t> remainder{0};  // -119 to 119
};

}  // namespace platform
