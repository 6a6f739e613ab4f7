// That no event comes at another time, or not at all, because the polling slept: long random runs
// are played twice, with timers that sleep and with timers that don't. KELVARO_REST_RUNS says how
// many.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/console/soak.h"

namespace kelvaro::console {
namespace {

constexpr std::uint64_t kLength = 12'000;  // ms

std::uint32_t RunsToCompare() {
  const char* runs = std::getenv("KELVARO_REST_RUNS");
  return runs ? static_cast<std::uint32_t>(std::strtoul(runs, nullptr, 10)) : 200;
}

std::vector<std::string> EventsOf(std::uint32_t seed, bool timersSleep) {
  std::vector<std::string> events;
  Soak soak({.seed = seed,
             .faults = false,
             .detections = true,
             .timersSleep = timersSleep,
             .listener = [&](const auto& event) { events.push_back(EventText(event)); }});
  while (soak.Now() < kLength && !testing::Test::HasFailure()) soak.Step();
  return events;
}

TEST(Rest, TheSameEventsComeAtTheSameTimesWithAndWithoutIt) {
  std::size_t compared = 0;
  for (std::uint32_t seed = 1; seed <= RunsToCompare(); ++seed) {
    const std::vector<std::string> without = EventsOf(seed, false);
    const std::vector<std::string> with = EventsOf(seed, true);
    for (std::size_t i = 0; i < std::max(without.size(), with.size()); ++i) {
      ASSERT_EQ(i < without.size() ? without[i] : "nothing", i < with.size() ? with[i] : "nothing")
          << "seed " << seed << ", event " << i << " without and with the sleep";
    }
    compared += without.size();
  }
  EXPECT_GT(compared, RunsToCompare() * 20);
}

}  // namespace
}  // namespace kelvaro::console
