// Hours of virtual time on a machine on which things go wrong: the pad is lost and comes back, is
// pulled out, its reads fail, timers and threads can't be had, the profile is edited. Nothing
// stands still, no lock stays taken, and whenever the engine lets go, nothing is left down.
// KELVARO_SOAK_HOURS makes it longer.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/console/soak.h"

namespace kelvaro::console {
namespace {

constexpr std::uint64_t kHour = 60 * 60 * 1000;  // ms

std::uint64_t HoursToRun() {
  const char* hours = std::getenv("KELVARO_SOAK_HOURS");
  return hours ? std::strtoull(hours, nullptr, 10) : 3;
}

TEST(Soak, HoursOfFaultsLeaveNothingDownAndNoLockTaken) {
  for (std::uint32_t hour = 0; hour < HoursToRun(); ++hour) {
    Soak soak({.seed = hour});
    while (soak.Now() < kHour) {
      soak.Step();
      ASSERT_FALSE(HasFailure()) << "seed " << hour;
    }
    EXPECT_GT(soak.Presses(), 1000U) << "seed " << hour;  // it went on to the end
  }
}

}  // namespace
}  // namespace kelvaro::console
