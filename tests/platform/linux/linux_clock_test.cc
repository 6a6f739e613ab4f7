#include "app/platform/linux/linux_clock.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <thread>

#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

TEST(LinuxClock, SleepOfZeroReturnsAtOnce) {
  LinuxClock clock;
  const std::int64_t start = MonotonicNow();
  clock.Sleep(0);
  EXPECT_LT(MonotonicNow() - start, kNanosecondsPerSecond);
}

TEST(LinuxClock, TicksAreTheLowHalfOfTheMonotonicMilliseconds) {
  LinuxClock clock;
  const auto before = static_cast<std::uint32_t>(MonotonicNow() / kNanosecondsPerMillisecond);
  const std::uint32_t ticks = clock.GetTickCount();
  const auto after = static_cast<std::uint32_t>(MonotonicNow() / kNanosecondsPerMillisecond);
  EXPECT_LE(ticks - before, after - before);
}

std::atomic<int> signalsTaken{0};

TEST(LinuxClock, SleepGoesOnAfterASignal) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) { ++signalsTaken; };
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
  const pthread_t sleeper = pthread_self();
  std::thread interrupter([&] {
    for (int i = 0; i < 5; ++i) {
      LinuxClock().Sleep(8);
      pthread_kill(sleeper, SIGUSR1);
    }
  });
  const std::int64_t start = MonotonicNow();
  LinuxClock().Sleep(60);
  EXPECT_GE(MonotonicNow() - start, 60 * kNanosecondsPerMillisecond);
  interrupter.join();
  EXPECT_GT(signalsTaken, 0);
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace platform
