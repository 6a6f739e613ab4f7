// The power fails at each operation of a deed, and the disk comes back in each state that what
// wasn't made lasting may be in.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {

// One way after the other to choose among all that there is to choose, until there is none left.
class Choices {
 public:
  std::uint32_t operator()(std::uint32_t n) {
    if (at == made.size()) made.push_back({0, n});
    return made[at++].chosen;
  }
  bool Next() {
    at = 0;
    while (!made.empty() && made.back().chosen + 1 == made.back().of) made.pop_back();
    if (made.empty()) return false;
    ++made.back().chosen;
    return true;
  }

 private:
  struct Choice {
    std::uint32_t chosen;
    std::uint32_t of;
  };
  std::vector<Choice> made;
  std::size_t at = 0;
};

// What is done on a machine, and what is to be found after a power cut in it.
struct Deed {
  std::function<void(platform::simulation::Simulation&)> prepare;
  std::function<void()> act;
  // With whether `act` had come to its end.
  std::function<void(platform::simulation::Simulation&, bool isDone)> check;
};

// How many states of the disk were looked at.
inline std::uint32_t CutEverywhere(const Deed& deed) {
  std::uint64_t operations = 0;
  std::uint32_t states = 0;
  for (std::uint64_t n = 0; n <= operations; ++n) {
    Choices choices;
    std::uint32_t ways = 0;
    do {
      platform::simulation::Simulation sim;
      deed.prepare(sim);
      sim.Disk().ClearLog();
      if (n == 0) {
        deed.act();
        operations = sim.Disk().Log().size();
      } else {
        sim.Disk().StopBefore(n);
        deed.act();
      }
      sim.Disk().CutPower([&](std::uint32_t of) { return choices(of); });
      SCOPED_TRACE(testing::Message()
                   << "before operation " << n << " of " << operations << ", way " << ways);
      deed.check(sim, n == 0);
      ++states;
      if (testing::Test::HasFailure()) return states;
    } while (choices.Next() && ++ways < 100'000);
    EXPECT_LT(ways, 100'000u);
  }
  return states;
}

}  // namespace kelvaro
