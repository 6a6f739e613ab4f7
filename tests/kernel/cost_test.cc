// What a key costs: calls to the system are counted, and wakes of threads.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <map>
#include <string>

#include "tests/kernel/pad.h"
#include "tests/kernel/profile_run.h"
#include "tests/kernel/trace.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

constexpr int kTaps = 20;

class Cost : public ::testing::TestWithParam<bool> {
 protected:
  Cost() {
    chmod(pad.Node().c_str(), 0666);
    chmod("/dev/uinput", 0666);
  }
  ~Cost() override { chmod("/dev/uinput", 0600); }

  // Taps of which no two changes fall together, and the calls meanwhile.
  std::vector<SystemCall> CallsOfTaps(ProfileRun& run) {
    return TraceCalls(run.Process().Id(), 0, [this] {
      for (int i = 0; i < kTaps; ++i) pad.Tap(0, 20);
    });
  }
  // Of one thread, or to one file.
  static std::map<long, int> CallsOf(const std::vector<SystemCall>& calls, pid_t thread) {
    std::map<long, int> counts;
    for (const SystemCall& call : calls)
      if (call.thread == thread) ++counts[call.number];
    return counts;
  }
  static std::string List(const std::map<long, int>& counts) {
    std::string list;
    for (const auto& [number, count] : counts)
      list += " call " + std::to_string(number) + ": " + std::to_string(count);
    return list;
  }

  UinputPad pad{OrdinaryPad("Cost Pad")};
  const std::string profile = ProfileOf({ButtonControl(0, "a")});
  // A thread that isn't a real-time one runs as soon as it is woken.
  const ChildOptions how{.asNobody = GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Threads, Cost, ::testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Ordinary" : "RealTime";
                         });

TEST_P(Cost, NoKeySleepsForALock) {
  ProfileRun run(profile, "Cost Pad", pad.Node(), {}, how);
  ASSERT_TRUE(run.Started());
  const pid_t notification = ThreadOf(run.Process().Id(), "notification");
  ASSERT_GT(notification, 0);
  auto calls = CallsOf(CallsOfTaps(run), notification);
  EXPECT_EQ(calls[SYS_clock_nanosleep], 0) << List(calls);
  EXPECT_EQ(run.Keyboard().Texts().size(), 2U * kTaps);
}

}  // namespace
}  // namespace kelvaro::kernel
