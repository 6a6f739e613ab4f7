// Multimedia timers, as every system has them.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "app/platform/machine/this_machine.h"
#include "tests/platform/news.h"
#ifndef _WIN32
#include "tests/host/processes.h"
#endif

namespace platform {
namespace {

constexpr std::int64_t kMillisecond = 1000;

// A call may come that much early: Windows counts whole milliseconds.
#ifdef _WIN32
constexpr std::int64_t kGrain = kMillisecond;
#else
constexpr std::int64_t kGrain = 0;
#endif

// Microseconds since some start.
std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

void Pause(std::uint32_t ms) { ThisClock().Sleep(ms); }

struct Ticks {
  ThisTimers* timers = nullptr;
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
  if (++ticks->count == 1) ticks->firstAt = Now();
  if (ticks->count <= ticks->sleepTicks) Pause(ticks->sleepMs);
  --ticks->inside;
}

bool Reaches(const std::atomic<int>& count, int wanted) {
  for (int waited = 0; waited < 60000 && count < wanted; ++waited) Pause(1);
  return count >= wanted;
}

class TimersTest : public testing::Test {
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
  ThisTimers timers;
};

TEST_F(TimersTest, PeriodsOutsideTheLimitsAreRefused) {
  TIMECAPS caps;
  ASSERT_EQ(timers.timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 1u);
  EXPECT_GE(caps.wPeriodMax, 65535u);
  EXPECT_NE(timers.timeGetDevCaps(nullptr), TIMERR_NOERROR);
  for (const std::uint32_t bad : {0u, caps.wPeriodMax + 1, 0xFFFFFFFFu}) {
    EXPECT_EQ(timers.timeSetEvent(bad, 1, Tick, &ticks, TIME_PERIODIC), 0u);
  }
  EXPECT_NE(timers.timeBeginPeriod(0), TIMERR_NOERROR);
  EXPECT_NE(timers.timeEndPeriod(0), TIMERR_NOERROR);
  for (const std::uint32_t good : {1u, 33u, caps.wPeriodMax}) {
    EXPECT_EQ(timers.timeBeginPeriod(good), TIMERR_NOERROR);
    EXPECT_EQ(timers.timeEndPeriod(good), TIMERR_NOERROR);
  }
  EXPECT_EQ(timers.timeSetEvent(10, 1, nullptr, &ticks, TIME_PERIODIC), 0u);
  EXPECT_EQ(timers.timeSetEvent(10, 1, Tick, &ticks, 0), 0u);
}

TEST_F(TimersTest, CallsComeOnceAPeriodAndFirstAfterOne) {
  const std::int64_t start = Now();
  const std::uint32_t id = Start(10);
  ASSERT_NE(id, 0u);
  ASSERT_TRUE(Reaches(ticks.count, 10));
  const std::int64_t took = Now() - start;
  EXPECT_GE(took, 100 * kMillisecond - kGrain);
  EXPECT_GE(ticks.firstAt - start, 10 * kMillisecond - kGrain);
  EXPECT_EQ(ticks.id, id);
  End(id);
}

TEST_F(TimersTest, NoCallStartsAfterTheKill) {
  const std::uint32_t id = Start(1);
  ASSERT_TRUE(Reaches(ticks.count, 5));
  End(id);
  ExpectNoFurtherCall();
}

TEST_F(TimersTest, TheKillWaitsForTheCallUnderWay) {
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

TEST_F(TimersTest, AnUnknownIdIsRefused) {
  EXPECT_NE(timers.timeKillEvent(0), TIMERR_NOERROR);
  const std::uint32_t id = Start(1000);
  EXPECT_NE(timers.timeKillEvent(id + 1), TIMERR_NOERROR);
  End(id);
  EXPECT_NE(timers.timeKillEvent(id), TIMERR_NOERROR);
}

TEST_F(TimersTest, PeriodsMissedDuringACallAreNotMadeUpFor) {
  ticks.sleepMs = 210;
  ticks.sleepTicks = 1;
  const std::int64_t start = Now();
  const std::uint32_t id = Start(20);
  // The first call, at 20 ms, runs to 230 ms; grid points 40 to 220 pass meanwhile.
  ASSERT_TRUE(Reaches(ticks.count, 3));
  const std::int64_t took = Now() - start;
  End(id);
  // The second and third calls stand on the grid behind the first one's end: 240 and 260 ms. Made
  // up for they would come at 230 at once.
  EXPECT_GE(took, 260 * kMillisecond - kGrain);
  EXPECT_FALSE(ticks.overlapped);
}

TEST_F(TimersTest, ACallbackMayKillItsOwnTimer) {
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

TEST_F(TimersTest, SeveralTimersRunSideBySide) {
  Ticks slow;
  const std::uint32_t one = Start(2);
  const std::uint32_t other = timers.timeSetEvent(20, 1, Tick, &slow, TIME_PERIODIC);
  EXPECT_NE(one, other);
  EXPECT_TRUE(Reaches(slow.count, 3));
  EXPECT_TRUE(Reaches(ticks.count, slow.count + 1));
  End(other);
}

// A timer of 5 ms that goes to sleep in each call.
class SleepingTimerTest : public TimersTest {
 protected:
  ~SleepingTimerTest() override { End(id); }
  std::uint32_t Start(bool once = false) {
    atOnce = once;
    start = Now();
    id = timers.timeSetEvent(5, 1, Call, this, TIME_PERIODIC);
    EXPECT_NE(id, 0u);
    return id;
  }
  static void Call(std::uint32_t own, void* user) {
    auto* self = static_cast<SleepingTimerTest*>(user);
    self->calledAt = Now();
    self->source.Take();
    if (self->wokenWithin) self->timers.WakeTimer(own);
    self->timers.SleepTimer(own, self->source.Get(), self->atOnce);
    if (self->wokenAfterwards.exchange(false)) self->timers.WakeTimer(own);
    ++self->ticks.count;
  }

  News source;
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
    source.Report();
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
    const std::int64_t told = Now();
    source.Report();
    ASSERT_TRUE(Reaches(ticks.count, round + 1));
    // The thread begins its grid a little after `start`, and no call comes before its point of it.
    constexpr std::int64_t kPeriod = 5 * kMillisecond;
    EXPECT_GE((calledAt + kGrain - start) / kPeriod, (told - start) / kPeriod) << round;
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
    source.Report();
    ASSERT_TRUE(Reaches(ticks.count, round + 1));
    // A call that comes late may have the next one close behind it: the times at which they are due
    // lie apart, and no call comes before its own.
    EXPECT_GE(calledAt + kGrain - start, (round + 1) * 5 * kMillisecond) << round;
  }
}

TEST_F(TimersTest, TheEndOfTheObjectWaitsForTheCallUnderWay) {
  ticks.sleepMs = 50;
  ticks.sleepTicks = 1000;
  {
    ThisTimers ended;
    ASSERT_NE(ended.timeSetEvent(1, 1, Tick, &ticks, TIME_PERIODIC), 0u);
    ASSERT_TRUE(Reaches(ticks.count, 1));
  }
  EXPECT_EQ(ticks.inside, 0);
  ExpectNoFurtherCall();
}

// Not only when its period is over.
TEST_F(TimersTest, ALongPeriodEndsAtOnceWhenKilled) {
  TIMECAPS caps;
  ASSERT_EQ(timers.timeGetDevCaps(&caps), TIMERR_NOERROR);
  const std::int64_t start = Now();
  {
    ThisTimers ended;
    const std::uint32_t id = ended.timeSetEvent(caps.wPeriodMax, 1, Tick, &ticks, TIME_PERIODIC);
    ASSERT_NE(id, 0u);
    EXPECT_EQ(ended.timeKillEvent(id), TIMERR_NOERROR);
  }
  EXPECT_LT(Now() - start, caps.wPeriodMax * kMillisecond / 2);
  EXPECT_EQ(ticks.count, 0);
}

// Whether a thread is in its wait: one that isn't needs no wake on Linux, which sets an event at
// once. Windows sets it at the end of the call.
bool WouldBeWoken([[maybe_unused]] std::int32_t thread) {
#ifdef _WIN32
  return true;
#else
  return kelvaro::tests::IsAsleep(thread);
#endif
}

// A thread that the callback signals.
struct Signalled {
  ThisThreads threads;
  const Handle event = threads.CreateEventA(false, false);
  std::int32_t id = 0;
  int told = 0;
  std::atomic<bool> inCallback{false};
  std::atomic<int> cameTooEarly{0};
  std::atomic<int> wakes{0};
};

TEST_F(TimersTest, AThreadThatACallSignalsRunsOnceTheCallHasEnded) {
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
        if (mine->told == kWakes || mine->told != mine->wakes || !WouldBeWoken(mine->id)) return;
        ++mine->told;
        mine->inCallback = true;
        mine->threads.SetEvent(mine->event);
        std::this_thread::sleep_for(
            std::chrono::milliseconds(5));  // works on, without a wait that the platform knows
        mine->inCallback = false;
      },
      &signalled, TIME_PERIODIC);
  EXPECT_EQ(signalled.threads.WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
  End(id);
  EXPECT_EQ(signalled.cameTooEarly, 0);
}

}  // namespace
}  // namespace platform
