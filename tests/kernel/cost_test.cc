// What a pad at rest, a poll and a key cost: switches to a thread and calls to the system are
// counted.

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr int kTaps = 20;

std::map<long, int> CallsOf(const std::vector<SystemCall>& calls, pid_t thread) {
  std::map<long, int> counts;
  for (const SystemCall& call : calls)
    if (call.thread == thread) ++counts[call.number];
  return counts;
}

std::string List(const std::map<long, int>& counts) {
  std::string list;
  for (const auto& [number, count] : counts)
    list += " call " + std::to_string(number) + ": " + std::to_string(count);
  return list;
}

class Cost : public ::testing::Test {
 protected:
  static std::string Interval(int ms) { return "\"pollInterval\":" + std::to_string(ms); }

  UinputPad pad{OrdinaryPad("Cost Pad")};
};

class RestCost : public Cost, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Ms, RestCost, ::testing::Values(1, 5),
                         ::testing::PrintToStringParamName());

TEST_P(RestCost, NoThreadRunsWhileThePadLiesStill) {
  ProfileRun run(ProfileOf({ButtonControl(0, "a")}, Interval(GetParam())), "Cost Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Tap(0);
  WaitMs(500);
  const long before = SwitchesOf(run.Process().Id());
  ASSERT_GT(before, 0);
  WaitMs(10000);
  EXPECT_LE(SwitchesOf(run.Process().Id()) - before, 3);
  pad.Tap(0);
  EXPECT_TRUE(Sent(run.Keyboard(), {"KEY_A down", "KEY_A up", "KEY_A down", "KEY_A up"}));
}

// A stick that is held on moves the pointer at each tick.
TEST_F(Cost, QuietTickIsOneReadOneWriteAndOneWait) {
  ProfileRun run(ProfileOf({}, Interval(5) + ",\"mouse\":{\"mouseX\":{\"kind\":0,\"index\":0},"
                                             "\"mouseAlwaysActive\":true}"),
                 "Cost Pad", pad.Node());
  ASSERT_TRUE(run.Started());
  pad.Move(ABS_X, 32000);
  WaitMs(200);
  const pid_t timer = ThreadOf(run.Process().Id(), "timer");
  std::map<long, int> calls = CallsOf(TraceCalls(run.Process().Id(), 1000), timer);
  const std::string list = List(calls);
  EXPECT_NEAR(calls[SYS_read], 200, 2) << list;
  // One to the mouse; the other is the line that it prints.
  EXPECT_NEAR(calls[SYS_write], 400, 4) << list;
  calls.erase(SYS_read);
  calls.erase(SYS_write);
  ASSERT_EQ(calls.size(), 1U) << "more than that and a wait:" << list;
  EXPECT_NEAR(calls.begin()->second, 200, 2) << list;
}

class KeyCost : public Cost, public ::testing::WithParamInterface<bool> {
 protected:
  KeyCost() {
    chmod(pad.Node().c_str(), 0666);
    chmod("/dev/uinput", 0666);
  }
  ~KeyCost() override { chmod("/dev/uinput", 0600); }

  // Taps of which no two changes fall together, and the calls meanwhile. What only the first key
  // needs, such as memory, is over by then.
  std::vector<SystemCall> CallsOfTaps(ProfileRun& run) {
    pad.Tap(0);
    run.Keyboard().Clear();
    return TraceCalls(run.Process().Id(), 0, [this] {
      for (int i = 0; i < kTaps; ++i) pad.Tap(0, 20);
    });
  }

  const std::string profile = ProfileOf({ButtonControl(0, "a")});
  // A thread that isn't a real-time one runs as soon as it is woken.
  const ChildOptions how{.asNobody = GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Threads, KeyCost, ::testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Ordinary" : "RealTime";
                         });

TEST_P(KeyCost, NoKeySleepsForALock) {
  ProfileRun run(profile, "Cost Pad", pad.Node(), {}, how);
  ASSERT_TRUE(run.Started());
  const pid_t notification = ThreadOf(run.Process().Id(), "notification");
  ASSERT_GT(notification, 0);
  auto calls = CallsOf(CallsOfTaps(run), notification);
  EXPECT_EQ(calls[SYS_clock_nanosleep], 0) << List(calls);
  EXPECT_EQ(run.Keyboard().Texts().size(), 2U * kTaps);
}

TEST_P(KeyCost, AKeyIsOneWakeUpAndOneWrite) {
  ProfileRun run(profile, "Cost Pad", pad.Node(), {}, how);
  ASSERT_TRUE(run.Started());
  const pid_t notification = ThreadOf(run.Process().Id(), "notification");
  ASSERT_GT(notification, 0);
  auto calls = CallsOf(CallsOfTaps(run), notification);
  const std::string list = List(calls);
  // Each key comes with the line that it prints.
  EXPECT_EQ(calls[SYS_write], 2 * 2 * kTaps) << list;
  EXPECT_EQ(calls[SYS_futex], 2 * kTaps) << list;
  EXPECT_EQ(calls.size(), 2U) << list;
}

TEST_P(KeyCost, AChangeIsReadByOneCallAndOneThatFindsNothing) {
  ProfileRun run(profile, "Cost Pad", pad.Node(), {}, how);
  ASSERT_TRUE(run.Started());
  const int descriptor = DescriptorOf(run.Process().Id(), pad.Node());
  const pid_t timer = ThreadOf(run.Process().Id(), "timer");
  int inARow = 0;
  int most = 0;
  for (const SystemCall& call : CallsOfTaps(run)) {
    if (call.thread != timer) continue;
    const bool reads = call.number == SYS_read && static_cast<int>(call.first) == descriptor;
    inARow = reads ? inARow + 1 : 0;
    most = std::max(most, inARow);
  }
  EXPECT_EQ(most, 2);
}

TEST_P(KeyCost, AnAnswerAtOnceWaitsForNothingBetweenTheNewsAndTheRead) {
  ProfileRun run(profile, "Cost Pad", pad.Node(), {"--wake"}, how);
  ASSERT_TRUE(run.Started());
  const pid_t timer = ThreadOf(run.Process().Id(), "timer");
  long last = 0;
  int news = 0;
  for (const SystemCall& call : CallsOfTaps(run)) {
    if (call.thread != timer) continue;
    if (last == SYS_poll) {
      ++news;
      EXPECT_EQ(call.number, SYS_read);
    }
    last = call.number;
  }
  // The first one had begun to wait before.
  EXPECT_GE(news, 2 * kTaps - 1);
}

}  // namespace
}  // namespace kelvaro::kernel
