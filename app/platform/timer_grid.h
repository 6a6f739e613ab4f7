// Where the calls of a periodic timer stand: for those that implement platform::Timers.
#pragma once

#include <algorithm>
#include <cstdint>

namespace platform {

// The first point behind `point`, in whole periods from it, that lies behind `now`, too. All in one
// unit of time; `period` is more than 0.
constexpr std::int64_t NextGridPoint(std::int64_t point, std::int64_t now, std::int64_t period) {
  return point + (std::max<std::int64_t>(now - point, 0) / period + 1) * period;
}

}  // namespace platform
