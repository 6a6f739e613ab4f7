#include "app/platform/linux/linux_timers.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/linux_threads.h"
#include "app/platform/linux/monotonic_time.h"
#include "tests/host/processes.h"

namespace platform {
namespace {

void Pause(std::uint32_t ms) { LinuxClock().Sleep(ms); }

struct Ticks {
  LinuxTimers* timers = nullptr;
  std::atomic<int> count{0};
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  std::atomic<std::uint32_t> id{0};
  std::atomic<std::int64_t> firstAt{0};
  std::uint32_t sleepMs = 0;
  int sleepTicks = 0;  // so many of the first ones sleep
};

void Tick(std::uint32_t id, void* user) {
  auto* ticks = static_cast<Ticks*>(user);
  if (++ticks->inside > 1) ticks->overlapped = true;
  ticks->id = id;
  if (++ticks->count == 1) ticks->firstAt = MonotonicNow();
  if (ticks->count <= ticks->sleepTicks) Pause(ticks->sleepMs);
  --ticks->inside;
}

bool Reaches(const std::atomic<int>& count, int wanted) {
  for (int waited = 0; waited < 60000 && count < wanted; ++waited) Pause(1);
  return count >= wanted;
}

class LinuxTimersTest : public testing::Test {
 protected:
  std::uint32_t Start(std::uint32_t period) {
    return timers.timeSetEvent(period, 1, Tick, &ticks, TIME_PERIODIC);
  }
  void End(std::uint32_t id) { EXPECT_EQ(timers.timeKillEvent(id), TIMERR_NOERROR); }
  void ExpectNoFurtherCall() const {
    const int now = ticks.count;
    Pause(30);
    EXPECT_EQ(ticks.count, now);
  }

  Ticks ticks;
  LinuxTimers timers;
};

TEST_F(LinuxTimersTest, LimitsAreOneMillisecondToAMillion) {
  TIMECAPS caps;
  EXPECT_EQ(timers.timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 1u);
  EXPECT_EQ(caps.wPeriodMax, 1000000u);
  EXPECT_NE(timers.timeGetDevCaps(nullptr), TIMERR_NOERROR);
}

TEST_F(LinuxTimersTest, PeriodsOutsideTheLimitsAreRefused) {
  for (const std::uint32_t bad : {0u, 1000001u, 0xFFFFFFFFu}) {
    EXPECT_NE(timers.timeBeginPeriod(bad), TIMERR_NOERROR);
    EXPECT_NE(timers.timeEndPeriod(bad), TIMERR_NOERROR);
    EXPECT_EQ(timers.timeSetEvent(bad, 1, Tick, &ticks, TIME_PERIODIC), 0u);
  }
  for (const std::uint32_t good : {1u, 33u, 1000000u}) {
    EXPECT_EQ(timers.timeBeginPeriod(good), TIMERR_NOERROR);
    EXPECT_EQ(timers.timeEndPeriod(good), TIMERR_NOERROR);
  }
  EXPECT_EQ(timers.timeSetEvent(10, 1, nullptr, &ticks, TIME_PERIODIC), 0u);
  EXPECT_EQ(timers.timeSetEvent(10, 1, Tick, &ticks, 0), 0u);
}

TEST_F(LinuxTimersTest, CallsComeOnceAPeriodAndFirstAfterOne) {
  const std::int64_t start = MonotonicNow();
  const std::uint32_t id = Start(10);
  ASSERT_NE(id, 0u);
  ASSERT_TRUE(Reaches(ticks.count, 10));
  const std::int64_t took = MonotonicNow() - start;
  EXPECT_GE(took, 100 * kNanosecondsPerMillisecond);
  EXPECT_GE(ticks.firstAt - start, 10 * kNanosecondsPerMillisecond);
  EXPECT_EQ(ticks.id, id);
  End(id);
}

TEST_F(LinuxTimersTest, NoCallStartsAfterTheKill) {
  const std::uint32_t id = Start(1);
  ASSERT_TRUE(Reaches(ticks.count, 5));
  End(id);
  ExpectNoFurtherCall();
}

TEST_F(LinuxTimersTest, TheKillWaitsForTheCallUnderWay) {
  ticks.sleepMs = 200;
  ticks.sleepTicks = 1000;
  for (int round = 1; round <= 3; ++round) {
    const std::uint32_t id = Start(1);
    ASSERT_TRUE(Reaches(ticks.count, round));
    End(id);
    EXPECT_EQ(ticks.inside, 0);
    ticks.count = round;
  }
}

TEST_F(LinuxTimersTest, AnUnknownIdIsRefused) {
  EXPECT_NE(timers.timeKillEvent(0), TIMERR_NOERROR);
  const std::uint32_t id = Start(1000);
  EXPECT_NE(timers.timeKillEvent(id + 1), TIMERR_NOERROR);
  End(id);
  EXPECT_NE(timers.timeKillEvent(id), TIMERR_NOERROR);
}

TEST_F(LinuxTimersTest, PeriodsMissedDuringACallAreNotMadeUpFor) {
  ticks.sleepMs = 200;
  ticks.sleepTicks = 1;
  const std::int64_t start = MonotonicNow();
  const std::uint32_t id = Start(20);
  // The first call, at 20 ms, runs to 220 ms; grid points 40 to 200 pass meanwhile.
  ASSERT_TRUE(Reaches(ticks.count, 3));
  const std::int64_t took = MonotonicNow() - start;
  End(id);
  // The second and third calls stand on the grid behind the first one's end: 240 and 260 ms. Made
  // up for they would come at 220 at once.
  EXPECT_GE(took, 260 * kNanosecondsPerMillisecond);
  EXPECT_FALSE(ticks.overlapped);
}

TEST_F(LinuxTimersTest, ACallbackMayKillItsOwnTimer) {
  ticks.timers = &timers;
  const std::uint32_t id = timers.timeSetEvent(
      1, 1,
      [](std::uint32_t own, void* user) {
        auto* mine = static_cast<Ticks*>(user);
        if (mine->timers->timeKillEvent(own) == TIMERR_NOERROR) mine->id = own;
        ++mine->count;
      },
      &ticks, TIME_PERIODIC);
  ASSERT_TRUE(Reaches(ticks.count, 1));
  Pause(20);
  EXPECT_EQ(ticks.count, 1);
  EXPECT_EQ(ticks.id, id);
  EXPECT_NE(timers.timeKillEvent(id), TIMERR_NOERROR);
}

TEST_F(LinuxTimersTest, SeveralTimersRunSideBySide) {
  Ticks slow;
  const std::uint32_t one = Start(2);
  const std::uint32_t other = timers.timeSetEvent(20, 1, Tick, &slow, TIME_PERIODIC);
  EXPECT_NE(one, other);
  EXPECT_TRUE(Reaches(slow.count, 3));
  EXPECT_TRUE(Reaches(ticks.count, slow.count + 1));
  End(other);
}

// A timer of 5 ms that goes to sleep in each call.
class SleepingTimerTest : public LinuxTimersTest {
 protected:
  ~SleepingTimerTest() override { End(id); }
  std::uint32_t Start(bool once = false) {
    atOnce = once;
    start = MonotonicNow();
    id = timers.timeSetEvent(5, 1, Call, this, TIME_PERIODIC);
    EXPECT_NE(id, 0u);
    return id;
  }
  static void Call(std::uint32_t own, void* user) {
    auto* self = static_cast<SleepingTimerTest*>(user);
    self->calledAt = MonotonicNow();
    eventfd_t count;
    eventfd_read(self->source.Get(), &count);
    if (self->wokenWithin) self->timers.WakeTimer(own);
    self->timers.SleepTimer(own, self->source.Get(), self->atOnce);
    if (self->wokenAfterwards.exchange(false)) self->timers.WakeTimer(own);
    ++self->ticks.count;
  }
  void Tell() const { EXPECT_EQ(eventfd_write(source.Get(), 1), 0); }

  const Descriptor source{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  bool atOnce = false;
  std::atomic<bool> wokenWithin{false};
  std::atomic<bool> wokenAfterwards{false};
  std::atomic<std::int64_t> calledAt{0};
  std::int64_t start = 0;
  std::uint32_t id = 0;
};

TEST_F(SleepingTimerTest, CallsAgainOnlyForNewsAndForWakeTimer) {
  Start();
  for (int round = 1; round <= 3; ++round) {
    ASSERT_TRUE(Reaches(ticks.count, 2 * round - 1));
    ExpectNoFurtherCall();
    Tell();
    ASSERT_TRUE(Reaches(ticks.count, 2 * round));
    ExpectNoFurtherCall();
    timers.WakeTimer(id);
  }
  timers.WakeTimer(id + 1);
  timers.SleepTimer(id + 1, source.Get(), false);
}

TEST_F(SleepingTimerTest, GoesOnOnItsOldGrid) {
  Start();
  for (int round = 1; round <= 20; ++round) {
    ASSERT_TRUE(Reaches(ticks.count, round));
    Pause(7);
    const std::int64_t told = MonotonicNow();
    Tell();
    ASSERT_TRUE(Reaches(ticks.count, round + 1));
    // The thread begins its grid a little after `start`, and no call comes before its point of it.
    constexpr std::int64_t kPeriod = 5 * kNanosecondsPerMillisecond;
    EXPECT_GE((calledAt - start) / kPeriod, (told - start) / kPeriod) << round;
    EXPECT_GE(calledAt, told);
  }
}

TEST_F(SleepingTimerTest, ASleepThatIsAskedForAfterItsWakeUpIsNone) {
  wokenWithin = true;
  Start();
  EXPECT_TRUE(Reaches(ticks.count, 5));
  wokenWithin = false;
}

TEST_F(SleepingTimerTest, ASleepThatEndsBeforeItBeganEndsNoOther) {
  wokenAfterwards = true;
  Start();
  ASSERT_TRUE(Reaches(ticks.count, 2));
  Pause(30);
  EXPECT_EQ(ticks.count, 2);
}

TEST_F(SleepingTimerTest, AtOnceCallsComeAPeriodApartAtLeast) {
  Start(true);
  ASSERT_TRUE(Reaches(ticks.count, 1));
  for (int round = 1; round <= 20; ++round) {
    Tell();
    ASSERT_TRUE(Reaches(ticks.count, round + 1));
    // A call that comes late may have the next one close behind it: the times at which they are due
    // lie apart, and no call comes before its own.
    EXPECT_GE(calledAt - start, (round + 1) * 5 * kNanosecondsPerMillisecond) << round;
  }
}

TEST_F(LinuxTimersTest, TheEndOfTheObjectWaitsForTheCallUnderWay) {
  ticks.sleepMs = 50;
  ticks.sleepTicks = 1000;
  {
    LinuxTimers ended;
    ASSERT_NE(ended.timeSetEvent(1, 1, Tick, &ticks, TIME_PERIODIC), 0u);
    ASSERT_TRUE(Reaches(ticks.count, 1));
  }
  EXPECT_EQ(ticks.inside, 0);
  ExpectNoFurtherCall();
}

TEST_F(LinuxTimersTest, ALongPeriodEndsAtOnceWhenKilled) {
  const std::int64_t start = MonotonicNow();
  {
    LinuxTimers ended;
    const std::uint32_t id = ended.timeSetEvent(1000000, 1, Tick, &ticks, TIME_PERIODIC);
    ASSERT_NE(id, 0u);
    EXPECT_EQ(ended.timeKillEvent(id), TIMERR_NOERROR);
  }
  EXPECT_LT(MonotonicNow() - start, 100 * kNanosecondsPerSecond);
  EXPECT_EQ(ticks.count, 0);
}

// A thread that the callback signals.
struct Signalled {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(false, false);
  std::int32_t id = 0;
  std::atomic<bool> inCallback{false};
  std::atomic<int> cameTooEarly{0};
  std::atomic<int> wakes{0};
};

TEST_F(LinuxTimersTest, AThreadThatACallSignalsRunsOnceTheCallHasEnded) {
  constexpr int kWakes = 10;
  Signalled signalled;
  const Handle thread = signalled.threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        auto* mine = static_cast<Signalled*>(parameter);
        while (mine->wakes < kWakes) {
          mine->threads.WaitForSingleObject(mine->event, WAIT_FOREVER);
          if (mine->inCallback) ++mine->cameTooEarly;
          ++mine->wakes;
        }
        return 0;
      },
      &signalled, "test", &signalled.id);
  const std::uint32_t id = timers.timeSetEvent(
      50, 1,
      [](std::uint32_t, void* user) {
        auto* mine = static_cast<Signalled*>(user);
        // One that isn't in its wait yet needs no wake.
        if (mine->wakes == kWakes || !kelvaro::tests::IsAsleep(mine->id)) return;
        mine->inCallback = true;
        mine->threads.SetEvent(mine->event);
        usleep(5000);  // works on, without a wait that the platform knows
        mine->inCallback = false;
      },
      &signalled, TIME_PERIODIC);
  EXPECT_EQ(signalled.threads.WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
  End(id);
  EXPECT_EQ(signalled.cameTooEarly, 0);
}

}  // namespace
}  // namespace platform
