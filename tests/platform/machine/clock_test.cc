// The clock, as every system has it.
#include <gtest/gtest.h>

#include <chrono>

#include "app/platform/machine/this_machine.h"

namespace platform {
namespace {

using Time = std::chrono::steady_clock;

TEST(Clock, SleepLastsAtLeastAsLongAsAsked) {
  ThisClock clock;
  const auto start = Time::now();
  clock.Sleep(20);
  EXPECT_GE(Time::now() - start, std::chrono::milliseconds(20));
}

TEST(Clock, TicksAreMilliseconds) {
  ThisClock clock;
  const std::uint32_t before = clock.GetTickCount();
  clock.Sleep(100);
  // The system's grain is 16 ms at most.
  EXPECT_GE(clock.GetTickCount() - before, 84u);
}

}  // namespace
}  // namespace platform
