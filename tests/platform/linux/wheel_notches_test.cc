#include "app/platform/linux/wheel_notches.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace platform {
namespace {

TEST(WheelNotches, ANotchIsOneHundredAndTwentyCounts) {
  WheelNotches wheel;
  EXPECT_EQ(wheel.Add(120), 1);
  EXPECT_EQ(wheel.Add(-120), -1);
  EXPECT_EQ(wheel.Add(360), 3);
}

TEST(WheelNotches, WhatIsLeftOverStays) {
  const struct {
    std::int32_t counts, notches;
  } steps[] = {{50, 0}, {50, 0}, {50, 1}, {-30, 0}, {-119, 0}, {-1, -1}, {250, 2}, {0, 0}};
  // Remainders after each: 50, 100, 30, 0, -119, 0, 10, 10.
  WheelNotches wheel;
  for (const auto& step : steps) EXPECT_EQ(wheel.Add(step.counts), step.notches) << step.counts;
}

TEST(WheelNotches, ExtremesDoNotOverflow) {
  WheelNotches wheel;
  EXPECT_EQ(wheel.Add(119), 0);
  // 2147483647 + 119 = 2147483766 = 120 * 17895698 + 6
  EXPECT_EQ(wheel.Add(std::numeric_limits<std::int32_t>::max()), 17895698);
  // 6 - 2147483648 = -2147483642 = -(120 * 17895697 + 2)
  EXPECT_EQ(wheel.Add(std::numeric_limits<std::int32_t>::min()), -17895697);
}

}  // namespace
}  // namespace platform
