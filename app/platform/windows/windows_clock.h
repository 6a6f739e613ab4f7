// The system's tick count, and its sleep, which is as fine as the grain that timeBeginPeriod asked
// for. Any thread.
#pragma once

#include <cstdint>

#include "app/platform/clock.h"

namespace platform {

class WindowsClock : public Clock {
 public:
  void Sleep(std::uint32_t ms) override;
  std::uint32_t GetTickCount() override;
};

}  // namespace platform
