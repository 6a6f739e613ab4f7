#include "app/platform/linux/linux_clock.h"

#include <errno.h>
#include <sched.h>
#include <time.h>

#include "app/platform/cut_off.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/waiting.h"

namespace platform {

void LinuxClock::Sleep(std::uint32_t ms) {
  HeldWakes::LetOut();
  if (ms == 0) {
    sched_yield();
    return;
  }
  const timespec end = ToTimespec(MonotonicNow() + std::int64_t{ms} * kNanosecondsPerMillisecond);
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
  StopHereIfCutOff();
}

std::uint32_t LinuxClock::GetTickCount() {
  return static_cast<std::uint32_t>(MonotonicNow() / kNanosecondsPerMillisecond);
}

}  // namespace platform
