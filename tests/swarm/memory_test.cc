// What a world takes it gives back, and what goes on in it again and again takes no more each time.
#include <gtest/gtest.h>

#include "tests/swarm/live_objects.h"
#include "tests/swarm/script.h"
#include "tests/swarm/world.h"

namespace kelvaro::swarm {
namespace {

class SwarmMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (!LiveObjects()) GTEST_SKIP() << "the sanitizer has the operators";
  }
};

TEST_F(SwarmMemory, AWorldLeavesNothing) {
  const Script script = WakefulScript(7);
  EXPECT_EQ(Play(script), "");  // and what is made once for all is there
  const auto before = LiveObjects();
  EXPECT_EQ(Play(script), "");
  EXPECT_EQ(LiveObjects(), before);
}

TEST_F(SwarmMemory, ProfilesThatAreOpenedAndChangedAgainAndAgainTakeNoMore) {
  Script round;
  ASSERT_TRUE(
      ReadScript("Begin 0 0 wait 100\n"
                 "Pad 0 1 wait 100\n"
                 "Select 0 1 wait 100\n"
                 "Pad 1 17 wait 300\n"
                 "Edit 0 5 wait 200\n"
                 "Pad 1 4 wait 1000\n"
                 "Rename 0 4 wait 100\n"
                 "Pause 0 0 wait 100\n"
                 "Select 0 2 wait 200\n"
                 "Resume 0 0 wait 100\n"
                 "Lose 2 0 wait 100\n"
                 "Return 2 0 wait 100\n"
                 "Copy 0 5 wait 100\n"
                 "Delete 0 5 wait 100\n"
                 "Select 0 4 wait 100\n"
                 "Rename 0 1 wait 100\n"
                 "Detect 0 0 wait 100\n"
                 "Pad 1 9 wait 100\n"
                 "Detect 0 0 wait 100\n"
                 "HandsOff 0 0 wait 50\n"
                 "HandsOff 1 0 wait 500\n"
                 "End 0 0 wait 0\n",
                 &round));
  World world;
  auto before = LiveObjects();
  for (int n = 0; n < 20; ++n) {
    for (const Step& step : round) ASSERT_EQ(world.Do(step), "");
    // All profiles have been saved and opened by then.
    if (n == 1) before = LiveObjects();
    if (n > 1) {
      ASSERT_EQ(LiveObjects(), before) << "round " << n;
    }
  }
}

}  // namespace
}  // namespace kelvaro::swarm
