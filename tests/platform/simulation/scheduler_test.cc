#include "app/platform/simulation/scheduler.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

using SchedulerTest = ThreadedTest;

TEST_F(SchedulerTest, TimeMovesOnlyWhenEveryoneWaits) {
  EXPECT_EQ(sim.Now(), 0u);
  sim.RunFor(120);
  EXPECT_EQ(sim.Now(), 120u);
  clock().Sleep(5);
  EXPECT_EQ(sim.Now(), 125u);
  EXPECT_EQ(clock().GetTickCount(), 125u);
  sim.RunUntil(100);
  EXPECT_EQ(sim.Now(), 125u) << "time never goes back";
}

TEST_F(SchedulerTest, TickCountHasAnOffsetAndWraps) {
  sim.SetTickOffset(0xFFFFFFF0u);
  EXPECT_EQ(clock().GetTickCount(), 0xFFFFFFF0u);
  sim.RunFor(0x20);
  EXPECT_EQ(clock().GetTickCount(), 0x10u);
  EXPECT_EQ(sim.Now(), 0x20u);
}

TEST_F(SchedulerTest, ANewThreadRunsWhenItsMakerWaits) {
  bodies.Start("worker", [&] { diary.Note("worker"); });
  diary.Note("test");
  sim.RunFor(0);
  diary.Note("test");
  EXPECT_EQ(diary.text, "test@0 worker@0 test@0 ");
}

TEST_F(SchedulerTest, AtOneMillisecondTimerGoesBeforeNotificationBeforeRepeatBeforeOthers) {
  const auto everyTen = [&](const char* name) {
    bodies.Start(name, [this, name] {
      for (int round = 0; round < 2; ++round) {
        clock().Sleep(10);
        diary.Note(name);
      }
    });
  };
  // Made in the reverse order of their ranks.
  everyTen("launcher");
  everyTen("second launcher");
  everyTen("repeat");
  everyTen("notification");
  bodies.Tick(10, [&] { diary.Note("timer"); });
  clock().Sleep(10);
  diary.Note("test");
  clock().Sleep(10);
  diary.Note("test");
  EXPECT_EQ(diary.text,
            "timer@10 notification@10 repeat@10 launcher@10 second launcher@10 test@10 "
            "timer@20 notification@20 repeat@20 launcher@20 second launcher@20 test@20 ");
}

TEST_F(SchedulerTest, AnEarlierTimeGoesBeforeALowerRank) {
  bodies.Start("notification", [&] {
    clock().Sleep(11);
    diary.Note("notification");
  });
  bodies.Start("other", [&] {
    clock().Sleep(10);
    diary.Note("other");
  });
  sim.RunFor(20);
  EXPECT_EQ(diary.text, "other@10 notification@11 ");
}

TEST_F(SchedulerTest, AThreadRunsUntilItWaits) {
  const Handle event = threads().CreateEventA(false, false);
  bodies.Start("notification", [&] {
    threads().WaitForSingleObject(event, WAIT_FOREVER);
    diary.Note("notification");
  });
  bodies.Start("repeat", [&] {
    threads().SetEvent(event);
    diary.Note("repeat goes on");
    clock().Sleep(0);
    diary.Note("repeat again");
  });
  sim.RunFor(1);
  EXPECT_EQ(diary.text, "repeat goes on@0 notification@0 repeat again@0 ");
}

TEST_F(SchedulerTest, SleepOfZeroLetsLowerRanksRunWithoutTimeMovingOn) {
  bodies.Start("notification", [&] {
    diary.Note("a");
    clock().Sleep(0);
    diary.Note("a");
    clock().Sleep(0);
    diary.Note("a");
  });
  bodies.Start("other", [&] {
    diary.Note("b");
    clock().Sleep(0);
    diary.Note("b");
  });
  sim.RunFor(0);
  EXPECT_EQ(diary.text, "a@0 b@0 a@0 b@0 a@0 ");
}

TEST_F(SchedulerTest, RunForEndsBehindEverythingThatIsDueAtItsEnd) {
  bodies.Start("other", [&] {
    clock().Sleep(5);
    for (int round = 0; round < 3; ++round) clock().Sleep(0);
    diary.Note("other");
  });
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "other@5 ");
}

TEST_F(SchedulerTest, ThreadsMayEndWhileOthersWait) {
  int ended = 0;
  // More than fit on a few stacks, one after the other and at once.
  for (int batch = 0; batch < 5; ++batch) {
    for (std::uint32_t thread = 0; thread < 20; ++thread) {
      threads().CloseHandle(bodies.Start("short", [&ended, thread] {
        clock().Sleep(thread);
        ++ended;
      }));
    }
    EXPECT_EQ(sim.LivingThreads(), 20u);
    sim.RunFor(20);
    EXPECT_EQ(sim.LivingThreads(), 0u);
  }
  EXPECT_EQ(ended, 100);
  EXPECT_EQ(sim.OpenHandles(), 0u);
}

TEST(Scheduler, ASimulationMayEndWithThreadsAlive) {
  Bodies bodies;
  {
    Simulation sim;
    bodies.Start("sleeper", [] {
      for (;;) clock().Sleep(1);
    });
    bodies.Start("never begun", [] {});
    const Handle event = threads().CreateEventA(false, false);
    bodies.Start("waiter", [event] { threads().WaitForSingleObject(event, WAIT_FOREVER); });
    bodies.Tick(3, [] { clock().Sleep(1000); });
    sim.RunFor(10);
    EXPECT_EQ(sim.LivingThreads(), 2u);
    bodies.Start("another", [] {});
    EXPECT_EQ(sim.LivingThreads(), 3u);
  }
  Simulation next;
  next.RunFor(10);
  EXPECT_EQ(next.LivingThreads(), 0u);
}

TEST(SchedulerDeathTest, RefusesAnotherSystemThread) {
  EXPECT_DEATH(
      {
        Simulation sim;
        std::thread stranger([] { clock().Sleep(1); });
        stranger.join();
      },
      "a system thread calls that is not the simulation's own");
}

TEST(SchedulerDeathTest, SaysWhoWaitsForWhatWhenNothingIsDueAnyMore) {
  EXPECT_DEATH(
      {
        Simulation sim;
        Bodies bodies;
        const Handle event = threads().CreateEventA(true, false);
        const Handle thread =
            bodies.Start("repeat", [event] { threads().WaitForSingleObject(event, WAIT_FOREVER); });
        threads().WaitForSingleObject(thread, WAIT_FOREVER);
      },
      "at 0 ms nothing is due.*\n"
      ".*thread 1 \"outermost\" waits for thread 2 \"repeat\" without end\n"
      ".*thread 2 \"repeat\" waits for event 1 without end");
}

TEST(SchedulerDeathTest, FindsOutThreadsThatGoRoundWithoutTimeMovingOn) {
  EXPECT_DEATH(
      {
        Simulation sim;
        Bodies bodies;
        bodies.Start("spinning", [] {
          for (;;) clock().Sleep(0);
        });
        sim.RunFor(1);
      },
      "without time moving on");
}

TEST(SchedulerDeathTest, OnlyTheOutermostThreadLetsTimePass) {
  EXPECT_DEATH(
      {
        Simulation sim;
        Bodies bodies;
        bodies.Start("inner", [&] { sim.RunFor(1); });
        sim.RunFor(1);
      },
      "thread 2 \"inner\" runs");
}

TEST(SchedulerDeathTest, ThereIsOneSimulationAtATime) {
  EXPECT_DEATH(
      {
        Simulation sim;
        Simulation second;
      },
      "there is one already");
}

}  // namespace
}  // namespace platform::simulation
