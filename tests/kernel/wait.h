// Waiting in the virtual machine. Its clock skips idle time, so a short wait between two looks
// costs next to nothing.
#pragma once

#include <cstdint>
#include <functional>

#include "tests/host/processes.h"

namespace kelvaro::kernel {

// Microseconds of the monotonic clock, the one that the readers' events carry too.
std::int64_t NowUs();

void WaitMs(int ms);

// Sleeps until the clock shows `us`.
void WaitUntilUs(std::int64_t us);

// Looks every 2 ms until `done` is true; false when it isn't after `ms`.
inline bool Eventually(const std::function<bool()>& done, int ms) {
  return tests::Eventually(done, std::chrono::milliseconds(ms), std::chrono::milliseconds(2));
}

}  // namespace kelvaro::kernel
