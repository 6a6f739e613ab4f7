// CLOCK_MONOTONIC as a plain number of nanoseconds.
#pragma once

#include <time.h>

#include <cstdint>

namespace platform {

constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

inline std::int64_t MonotonicNow() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * kNanosecondsPerSecond + now.tv_nsec;
}

inline timespec ToTimespec(std::int64_t nanoseconds) {
  timespec t{};
  t.tv_sec = static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
  t.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
  return t;
}

}  // namespace platform
