#include <gtest/gtest.h>

#include "app/platform/simulation/simulation.h"

namespace platform::simulation {
namespace {

TEST(Scheduler, TimeMovesOnlyWhenEveryoneWaits) {
  Simulation sim;
  EXPECT_EQ(sim.Now(), 0u);
  sim.RunFor(120);
  EXPECT_EQ(sim.Now(), 120u);
  Sleep(5);
  EXPECT_EQ(GetTickCount(), 125u);
}

}  // namespace
}  // namespace platform::simulation
