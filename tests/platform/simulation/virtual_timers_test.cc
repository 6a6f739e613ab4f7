#include "app/platform/simulation/virtual_timers.h"

#include <gtest/gtest.h>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

TEST(VirtualTimers, TickAtTheMultiplesOfThePeriodFromTheCallOn) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  sim.RunFor(3);
  EXPECT_NE(bodies.Tick(5,
                        [&] {
                          diary.Note("tick");
                          return 0;
                        }),
            0u);
  EXPECT_EQ(diary.text, "");
  sim.RunUntil(18);
  EXPECT_EQ(diary.text, "tick@8 tick@13 tick@18 ");
}

TEST(VirtualTimers, PeriodsThatPassDuringACallAreSkipped) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Tick(10, [&] {
    diary.Note("tick");
    if (GetTickCount() == 20) Sleep(35);
    return 0;
  });
  sim.RunUntil(80);
  // 30, 40 and 50 pass while the call of 20 runs until 55.
  EXPECT_EQ(diary.text, "tick@10 tick@20 tick@60 tick@70 tick@80 ");
}

TEST(VirtualTimers, APeriodAtTheVeryEndOfACallIsNotSkipped) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Tick(10, [&] {
    diary.Note("tick");
    if (GetTickCount() == 20) Sleep(20);
    return 0;
  });
  bodies.Start("notification", [&] {
    Sleep(40);
    diary.Note("notification");
    return 0;
  });
  sim.RunUntil(50);
  EXPECT_EQ(diary.text, "tick@10 tick@20 tick@40 notification@40 tick@50 ");
}

TEST(VirtualTimers, OthersRunWhileACallWaits) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Tick(10, [&] {
    diary.Note("in");
    Sleep(12);
    diary.Note("out");
    return 0;
  });
  bodies.Start("repeat", [&] {
    for (;;) {
      Sleep(8);
      diary.Note("repeat");
    }
    return 0u;
  });
  sim.RunUntil(30);
  EXPECT_EQ(diary.text, "repeat@8 in@10 repeat@16 out@22 repeat@24 in@30 ");
}

TEST(VirtualTimers, NoCallStartsBehindAKill) {
  Simulation sim;
  Bodies bodies;
  int ticks = 0;
  const std::uint32_t timer = bodies.Tick(5, [&] {
    ++ticks;
    return 0;
  });
  sim.RunFor(10);
  EXPECT_EQ(timeKillEvent(timer), TIMERR_NOERROR);
  EXPECT_NE(timeKillEvent(timer), TIMERR_NOERROR);
  sim.RunFor(100);
  EXPECT_EQ(ticks, 2);
}

TEST(VirtualTimers, AKillWaitsForTheCallThatIsUnderWay) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const std::uint32_t timer = bodies.Tick(10, [&] {
    diary.Note("in");
    Sleep(25);
    diary.Note("out");
    return 0;
  });
  sim.RunFor(15);
  EXPECT_EQ(timeKillEvent(timer), TIMERR_NOERROR);
  EXPECT_EQ(diary.text, "in@10 out@35 ");
  EXPECT_EQ(sim.Now(), 35u);
  sim.RunFor(100);
  EXPECT_EQ(diary.text, "in@10 out@35 ");
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST(VirtualTimers, ACallMayKillItsOwnTimer) {
  Simulation sim;
  Bodies bodies;
  std::uint32_t timer = 0;
  int ticks = 0;
  timer = bodies.Tick(10, [&] {
    if (++ticks == 3) {
      EXPECT_EQ(timeKillEvent(timer), TIMERR_NOERROR);
    }
    return 0;
  });
  sim.RunFor(100);
  EXPECT_EQ(ticks, 3);
}

TEST(VirtualTimers, ATimerMayBeKilledBeforeItsFirstTurn) {
  Simulation sim;
  Bodies bodies;
  int ticks = 0;
  timeKillEvent(bodies.Tick(1, [&] {
    ++ticks;
    return 0;
  }));
  sim.RunFor(10);
  EXPECT_EQ(ticks, 0);
}

TEST(VirtualTimers, SeveralGoInTheOrderOfTheirMaking) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  std::uint32_t ids[2] = {};
  for (int timer = 0; timer < 2; ++timer) {
    ids[timer] = bodies.Tick(10, [&, timer] {
      diary.Note(std::to_string(timer));
      return 0;
    });
  }
  EXPECT_NE(ids[0], ids[1]);
  sim.RunFor(10);
  EXPECT_EQ(diary.text, "0@10 1@10 ");
  EXPECT_EQ(sim.LivingThreads(), 0u) << "timers' threads aren't counted";
}

TEST(VirtualTimers, TheCallGetsTheIdAndTheUserPointer) {
  Simulation sim;
  struct Got {
    std::uint32_t id = 0;
  } got;
  const std::uint32_t timer = timeSetEvent(
      4, 1, [](std::uint32_t id, void* user) { static_cast<Got*>(user)->id = id; }, &got,
      TIME_PERIODIC);
  sim.RunFor(4);
  EXPECT_EQ(got.id, timer);
}

TEST(VirtualTimers, HaveLimits) {
  Simulation sim;
  Bodies bodies;
  TIMECAPS caps;
  EXPECT_EQ(timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 1u);
  EXPECT_EQ(caps.wPeriodMax, 65535u);
  sim.SetTimerLimits(5, 100);
  EXPECT_EQ(timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 5u);
  EXPECT_EQ(caps.wPeriodMax, 100u);
  const auto nothing = [] { return 0; };
  struct Case {
    std::uint32_t ms;
    bool fits;
  };
  for (const Case& limit : {Case{0, false}, {4, false}, {5, true}, {100, true}, {101, false}}) {
    EXPECT_EQ(bodies.Tick(limit.ms, nothing) != 0, limit.fits) << limit.ms;
    EXPECT_EQ(timeBeginPeriod(limit.ms) == TIMERR_NOERROR, limit.fits) << limit.ms;
  }
  EXPECT_EQ(timeSetEvent(5, 1, nullptr, nullptr, TIME_PERIODIC), 0u);
  EXPECT_EQ(timeSetEvent(
                5, 1, [](std::uint32_t, void*) {}, nullptr, 0),
            0u)
      << "not periodic";
}

TEST(VirtualTimers, PeriodsAreGivenBackInPairs) {
  Simulation sim;
  EXPECT_EQ(timeBeginPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(timeBeginPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(sim.OpenTimerPeriods(), 2u);
  EXPECT_NE(timeEndPeriod(6), TIMERR_NOERROR);
  EXPECT_EQ(timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_NE(timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(sim.OpenTimerPeriods(), 0u);
}

TEST(VirtualTimers, FailAsPlanned) {
  Simulation sim;
  Bodies bodies;
  TIMECAPS caps{7, 8};
  sim.FailNext("timeGetDevCaps");
  EXPECT_NE(timeGetDevCaps(&caps), TIMERR_NOERROR);
  EXPECT_EQ(caps.wPeriodMin, 7u);
  EXPECT_EQ(timeGetDevCaps(&caps), TIMERR_NOERROR);
  sim.FailNext("timeBeginPeriod", 97);
  EXPECT_EQ(timeBeginPeriod(5), 97u);
  EXPECT_EQ(timeBeginPeriod(5), TIMERR_NOERROR);
  sim.FailNext("timeEndPeriod");
  EXPECT_NE(timeEndPeriod(5), TIMERR_NOERROR);
  EXPECT_EQ(sim.OpenTimerPeriods(), 1u);
  int ticks = 0;
  const auto count = [&] {
    ++ticks;
    return 0;
  };
  sim.FailNext("timeSetEvent");
  EXPECT_EQ(bodies.Tick(5, count), 0u);
  const std::uint32_t timer = bodies.Tick(5, count);
  EXPECT_NE(timer, 0u);
  sim.FailNext("timeKillEvent");
  EXPECT_NE(timeKillEvent(timer), TIMERR_NOERROR);
  sim.RunFor(5);
  EXPECT_EQ(ticks, 1) << "it goes on when the kill has failed";
}

TEST(VirtualTimers, CallsAreKeptInOrder) {
  Simulation sim;
  Bodies bodies;
  sim.LogCalls(true);
  TIMECAPS caps;
  timeGetDevCaps(&caps);
  timeBeginPeriod(5);
  const std::uint32_t timer = bodies.Tick(5, [] { return 0; });
  timeKillEvent(timer);
  timeEndPeriod(5);
  const std::vector<std::string> expected{"timeGetDevCaps", "timeBeginPeriod 5", "timeSetEvent 5 1",
                                          "timeKillEvent 1", "timeEndPeriod 5"};
  EXPECT_EQ(sim.Calls(), expected);
}

}  // namespace
}  // namespace platform::simulation
