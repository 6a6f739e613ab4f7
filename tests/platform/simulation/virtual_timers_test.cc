#include "app/platform/simulation/virtual_timers.h"

#include <gtest/gtest.h>

#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

using VirtualTimersTest = ThreadedTest;

TEST_F(VirtualTimersTest, TickAtTheMultiplesOfThePeriodFromTheCallOn) {
  sim.RunFor(3);
  EXPECT_NE(bodies.Tick(5, [&] { diary.Note("tick"); }), 0u);
  EXPECT_EQ(diary.text, "");
  sim.RunUntil(18);
  EXPECT_EQ(diary.text, "tick@8 tick@13 tick@18 ");
}

TEST_F(VirtualTimersTest, PeriodsThatPassDuringACallAreSkipped) {
  bodies.Tick(10, [&] {
    diary.Note("tick");
    if (clock().GetTickCount() == 20) clock().Sleep(35);
  });
  sim.RunUntil(80);
  // 30, 40 and 50 pass while the call of 20 runs until 55.
  EXPECT_EQ(diary.text, "tick@10 tick@20 tick@60 tick@70 tick@80 ");
}

TEST_F(VirtualTimersTest, APeriodAtTheVeryEndOfACallIsNotSkipped) {
  bodies.Tick(10, [&] {
    diary.Note("tick");
    if (clock().GetTickCount() == 20) clock().Sleep(20);
  });
  bodies.Start("notification", [&] {
    clock().Sleep(40);
    diary.Note("notification");
  });
  sim.RunUntil(50);
  EXPECT_EQ(diary.text, "tick@10 tick@20 tick@40 notification@40 tick@50 ");
}

TEST_F(VirtualTimersTest, OthersRunWhileACallWaits) {
  bodies.Tick(10, [&] {
    diary.Note("in");
    clock().Sleep(12);
    diary.Note("out");
  });
  bodies.Start("repeat", [&] {
    for (;;) {
      clock().Sleep(8);
      diary.Note("repeat");
    }
  });
  sim.RunUntil(30);
  EXPECT_EQ(diary.text, "repeat@8 in@10 repeat@16 out@22 repeat@24 in@30 ");
}

TEST_F(VirtualTimersTest, NoCallStartsBehindAKill) {
  int ticks = 0;
  const std::uint32_t timer = bodies.Tick(5, [&] { ++ticks; });
  sim.RunFor(10);
  EXPECT_EQ(timers().timeKillEvent(timer), TIMERR_NOERROR);
  EXPECT_NE(timers().timeKillEvent(timer), TIMERR_NOERROR);
  sim.RunFor(100);
  EXPECT_EQ(ticks, 2);
}

TEST_F(VirtualTimersTest, AKillWaitsForTheCallThatIsUnderWay) {
  const std::uint32_t timer = bodies.Tick(10, [&] {
    diary.Note("in");
    clock().Sleep(25);
    diary.Note("out");
  });
  sim.RunFor(15);
  EXPECT_EQ(timers().timeKillEvent(timer), TIMERR_NOERROR);
  EXPECT_EQ(diary.text, "in@10 out@35 ");
  EXPECT_EQ(sim.Now(), 35u);
  sim.RunFor(100);
  EXPECT_EQ(diary.text, "in@10 out@35 ");
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST_F(VirtualTimersTest, ACallMayKillItsOwnTimer) {
  std::uint32_t timer = 0;
  int ticks = 0;
  timer = bodies.Tick(10, [&] {
    if (++ticks == 3) {
      EXPECT_EQ(timers().timeKillEvent(timer), TIMERR_NOERROR);
    }
  });
  sim.RunFor(100);
  EXPECT_EQ(ticks, 3);
}

TEST_F(VirtualTimersTest, ATimerMayBeKilledBeforeItsFirstTurn) {
  int ticks = 0;
  timers().timeKillEvent(bodies.Tick(1, [&] { ++ticks; }));
  sim.RunFor(10);
  EXPECT_EQ(ticks, 0);
}

TEST_F(VirtualTimersTest, SeveralGoInTheOrderOfTheirMaking) {
  std::uint32_t ids[2] = {};
  for (int timer = 0; timer < 2; ++timer) {
    ids[timer] = bodies.Tick(10, [&, timer] { diary.Note(std::to_string(timer)); });
  }
  EXPECT_NE(ids[0], ids[1]);
  sim.RunFor(10);
  EXPECT_EQ(diary.text, "0@10 1@10 ");
  EXPECT_EQ(sim.LivingThreads(), 0u) << "timers' threads aren't counted";
}

TEST_F(VirtualTimersTest, HaveLimits) {
  TIMECAPS caps;
  EXPECT_EQ(timers().timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 1u);
  EXPECT_EQ(caps.wPeriodMax, 65535u);
  sim.SetTimerLimits(5, 100);
  EXPECT_EQ(timers().timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 5u);
  EXPECT_EQ(caps.wPeriodMax, 100u);
  const auto nothing = [] {};
  struct Case {
    std::uint32_t ms;
    bool fits;
  };
  for (const Case& limit : {Case{0, false}, {4, false}, {5, true}, {100, true}, {101, false}}) {
    EXPECT_EQ(bodies.Tick(limit.ms, nothing) != 0, limit.fits) << limit.ms;
    EXPECT_EQ(timers().timeBeginPeriod(limit.ms) == TIMERR_NOERROR, limit.fits) << limit.ms;
  }
  EXPECT_EQ(timers().timeSetEvent(5, 1, nullptr, nullptr, TIME_PERIODIC), 0u);
  EXPECT_EQ(timers().timeSetEvent(
                5, 1, [](std::uint32_t, void*) {}, nullptr, 0),
            0u)
      << "not periodic";
}

TEST_F(VirtualTimersTest, PeriodsAreGivenBackInPairs) {
  EXPECT_EQ(timers().timeBeginPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(timers().timeBeginPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(sim.OpenTimerPeriods(), 2u);
  EXPECT_NE(timers().timeEndPeriod(6), TIMERR_NOERROR);
  EXPECT_EQ(timers().timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(timers().timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_NE(timers().timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(sim.OpenTimerPeriods(), 0u);
}

}  // namespace
}  // namespace platform::simulation
