// What is made of presses and of the keys that come of them. tests/kernel has real ones.
#include "app/platform/linux/press_timing.h"

#include <errno.h>
#include <gtest/gtest.h>

#include <climits>
#include <optional>

namespace platform {
namespace {

// Keys that come at once, but for one of them.
class Keys : public KeyArrivals {
 public:
  std::optional<Key> Next(bool down, std::chrono::milliseconds) override {
    if (down && downs++ == lost) return std::nullopt;
    return Key{down, 1000, 2000};
  }
  void Forget() override {}

  int lost = -1;
  int downs = 0;
};

class PressTimingTest : public testing::Test {
 protected:
  PressTimingTest() {
    plan.presses = 5;
    plan.warmUp = 2;
    plan.gapUs = 0;
  }
  PressTimes Times() {
    return TimePresses([this](bool) { return changes++ != refused; }, keys, plan,
                       [this] { return changes < ended; });
  }

  PressPlan plan;
  Keys keys;
  int changes = 0;      // of the button
  int refused = -1;     // of these
  int ended = INT_MAX;  // after so many
};

TEST_F(PressTimingTest, EachPressBehindTheWarmUpCounts) {
  const PressTimes times = Times();
  EXPECT_EQ(times.sent.size(), 5u);
  EXPECT_EQ(times.seen.size(), 5u);
  EXPECT_EQ(times.lost, 0);
  EXPECT_EQ(changes, 14);
}

TEST_F(PressTimingTest, AKeyThatDoesNotComeIsLostUnlessItWarmsUp) {
  keys.lost = 3;
  const PressTimes times = Times();
  EXPECT_EQ(times.sent.size(), 4u);
  EXPECT_EQ(times.lost, 1);
  keys = Keys();
  keys.lost = 1;
  EXPECT_EQ(Times().lost, 0);
}

TEST_F(PressTimingTest, APadThatFailsOrASignalEndsItWithWhatItHas) {
  refused = 6;  // the press behind three whole ones
  EXPECT_EQ(Times().sent.size(), 1u);
  changes = 0;
  refused = 7;  // its end
  EXPECT_EQ(Times().sent.size(), 2u);
  changes = 0;
  refused = -1;
  ended = 8;
  EXPECT_EQ(Times().sent.size(), 2u);
}

TEST(PressTiming, ANodeThatIsNotThereHasNoKeysAndNoForwarder) {
  int error = 0;
  EXPECT_FALSE(KeyWatch::Open("/dev/input/none", &error));
  EXPECT_EQ(error, ENOENT);
  error = 0;
  EXPECT_FALSE(Forwarder::Start("/dev/input/none", 1, -1, 1, &error));
  EXPECT_EQ(error, ENOENT);
}

}  // namespace
}  // namespace platform
