#include "tests/kernel/wait.h"

#include <cerrno>
#include <ctime>

namespace kelvaro::kernel {

std::int64_t NowUs() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

void WaitUntilUs(std::int64_t us) {
  timespec when = {};
  when.tv_sec = us / 1000000;
  when.tv_nsec = us % 1000000 * 1000;
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
  }
}

void WaitMs(int ms) { WaitUntilUs(NowUs() + static_cast<std::int64_t>(ms) * 1000); }

}  // namespace kelvaro::kernel
