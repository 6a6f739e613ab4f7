#include "app/platform/timer_grid.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace platform {
namespace {

TEST(TimerGrid, TheNextPointIsAWholePeriodAwayAndStillAhead) {
  const struct {
    std::int64_t point, now, period, next;
  } kCases[] = {
      {100, 100, 10, 110},  {100, 109, 10, 110}, {100, 110, 10, 120}, {100, 111, 10, 120},
      {100, 999, 10, 1000}, {100, 40, 10, 110},  {0, 7, 1, 8},        {5, 5, 1, 6},
  };
  for (const auto& c : kCases) EXPECT_EQ(NextGridPoint(c.point, c.now, c.period), c.next) << c.now;
}

}  // namespace
}  // namespace platform
