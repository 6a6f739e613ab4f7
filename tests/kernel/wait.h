// Waiting in the virtual machine. Its clock skips idle time, so a short wait between two looks
// costs next to nothing.
#pragma once

#include <chrono>
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

// Waits until for 200 ms no other program has had anything to do, which includes waiting for a page
// of its own file: the clock leaps while that comes from the host, so that no time is long enough.
// False after `limit`.
bool ComesToRest(std::chrono::milliseconds limit);

}  // namespace kelvaro::kernel
