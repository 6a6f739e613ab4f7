#include "app/platform/linux/linux_clock.h"

#include <sched.h>

#include "app/platform/cut_off.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/waiting.h"

namespace platform {

void LinuxClock::Sleep(std::uint32_t ms) {
  if (ms == 0) {
    HeldWakes::LetOut();
    sched_yield();
    return;
  }
  SleepUntil(MonotonicNow() + std::int64_t{ms} * kNanosecondsPerMillisecond);
  StopHereIfCutOff();
}

std::uint32_t LinuxClock::GetTickCount() {
  return static_cast<std::uint32_t>(MonotonicNow() / kNanosecondsPerMillisecond);
}

}  // namespace platform
