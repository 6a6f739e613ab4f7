// The system's monotonic clock. It stands still while the machine sleeps. Any thread.
#pragma once

#include <cstdint>

#include "app/platform/clock.h"

namespace platform {

class LinuxClock : public Clock {
 public:
  // Goes on after a signal until the time is over.
  void Sleep(std::uint32_t ms) override;
  std::uint32_t GetTickCount() override;
};

}  // namespace platform
