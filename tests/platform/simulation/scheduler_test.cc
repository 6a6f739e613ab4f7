#include "app/platform/simulation/scheduler.h"

#include <gtest/gtest.h>

#include <thread>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

TEST(Scheduler, TimeMovesOnlyWhenEveryoneWaits) {
  Simulation sim;
  EXPECT_EQ(sim.Now(), 0u);
  sim.RunFor(120);
  EXPECT_EQ(sim.Now(), 120u);
  Sleep(5);
  EXPECT_EQ(sim.Now(), 125u);
  EXPECT_EQ(GetTickCount(), 125u);
  sim.RunUntil(100);
  EXPECT_EQ(sim.Now(), 125u) << "time never goes back";
}

TEST(Scheduler, TickCountHasAnOffsetAndWraps) {
  Simulation sim;
  sim.SetTickOffset(0xFFFFFFF0u);
  EXPECT_EQ(GetTickCount(), 0xFFFFFFF0u);
  sim.RunFor(0x20);
  EXPECT_EQ(GetTickCount(), 0x10u);
  EXPECT_EQ(sim.Now(), 0x20u);
}

TEST(Scheduler, ANewThreadRunsWhenItsMakerWaits) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Start("worker", [&] {
    diary.Note("worker");
    return 0;
  });
  diary.Note("test");
  sim.RunFor(0);
  diary.Note("test");
  EXPECT_EQ(diary.text, "test@0 worker@0 test@0 ");
}

TEST(Scheduler, AtOneMillisecondTimerGoesBeforeNotificationBeforeRepeatBeforeOthers) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const auto everyTen = [&](const char* name) {
    bodies.Start(name, [&diary, name] {
      for (int round = 0; round < 2; ++round) {
        Sleep(10);
        diary.Note(name);
      }
      return 0;
    });
  };
  // Made in the reverse order of their ranks.
  everyTen("launcher");
  everyTen("second launcher");
  everyTen("repeat");
  everyTen("notification");
  bodies.Tick(10, [&] {
    diary.Note("timer");
    return 0;
  });
  Sleep(10);
  diary.Note("test");
  Sleep(10);
  diary.Note("test");
  EXPECT_EQ(diary.text,
            "timer@10 notification@10 repeat@10 launcher@10 second launcher@10 test@10 "
            "timer@20 notification@20 repeat@20 launcher@20 second launcher@20 test@20 ");
}

TEST(Scheduler, AnEarlierTimeGoesBeforeALowerRank) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Start("notification", [&] {
    Sleep(11);
    diary.Note("notification");
    return 0;
  });
  bodies.Start("other", [&] {
    Sleep(10);
    diary.Note("other");
    return 0;
  });
  sim.RunFor(20);
  EXPECT_EQ(diary.text, "other@10 notification@11 ");
}

TEST(Scheduler, AThreadRunsUntilItWaits) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const Handle event = CreateEventA(false, false);
  bodies.Start("notification", [&] {
    WaitForSingleObject(event, WAIT_FOREVER);
    diary.Note("notification");
    return 0;
  });
  bodies.Start("repeat", [&] {
    SetEvent(event);
    diary.Note("repeat goes on");
    Sleep(0);
    diary.Note("repeat again");
    return 0;
  });
  sim.RunFor(1);
  EXPECT_EQ(diary.text, "repeat goes on@0 notification@0 repeat again@0 ");
}

TEST(Scheduler, AThreadThatAnEventWakesIsDueAtThatMillisecond) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const Handle event = CreateEventA(false, false);
  bodies.Start("notification", [&] {
    WaitForSingleObject(event, WAIT_FOREVER);
    diary.Note("woken");
    return 0;
  });
  bodies.Tick(7, [&] {
    diary.Note("tick");
    if (GetTickCount() == 14) SetEvent(event);
    return 0;
  });
  sim.RunFor(14);
  EXPECT_EQ(diary.text, "tick@7 tick@14 woken@14 ");
}

TEST(Scheduler, SleepOfZeroLetsLowerRanksRunWithoutTimeMovingOn) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Start("notification", [&] {
    diary.Note("a");
    Sleep(0);
    diary.Note("a");
    Sleep(0);
    diary.Note("a");
    return 0;
  });
  bodies.Start("other", [&] {
    diary.Note("b");
    Sleep(0);
    diary.Note("b");
    return 0;
  });
  sim.RunFor(0);
  EXPECT_EQ(diary.text, "a@0 b@0 a@0 b@0 a@0 ");
}

TEST(Scheduler, RunForEndsBehindEverythingThatIsDueAtItsEnd) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  bodies.Start("other", [&] {
    Sleep(5);
    for (int round = 0; round < 3; ++round) Sleep(0);
    diary.Note("other");
    return 0;
  });
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "other@5 ");
}

TEST(Scheduler, ThreadsMayEndWhileOthersWait) {
  Simulation sim;
  Bodies bodies;
  int ended = 0;
  // More than fit on a few stacks, one after the other and at once.
  for (int batch = 0; batch < 5; ++batch) {
    for (std::uint32_t thread = 0; thread < 20; ++thread) {
      CloseHandle(bodies.Start("short", [&ended, thread] {
        Sleep(thread);
        ++ended;
        return 0;
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
      for (;;) Sleep(1);
      return 0u;
    });
    bodies.Start("never begun", [] { return 0; });
    const Handle event = CreateEventA(false, false);
    bodies.Start("waiter", [event] {
      WaitForSingleObject(event, WAIT_FOREVER);
      return 0;
    });
    bodies.Tick(3, [] {
      Sleep(1000);
      return 0;
    });
    sim.RunFor(10);
    EXPECT_EQ(sim.LivingThreads(), 2u);
    bodies.Start("another", [] { return 0; });
    EXPECT_EQ(sim.LivingThreads(), 3u);
  }
  Simulation next;
  next.RunFor(10);
  EXPECT_EQ(next.LivingThreads(), 0u);
}

TEST(Scheduler, ThreadsHaveRoomOnTheirStacks) {
  Simulation sim;
  Bodies bodies;
  std::uint32_t sum = 0;
  for (int thread = 0; thread < 2; ++thread) {
    bodies.Start("deep", [&] {
      volatile std::uint8_t room[128 * 1024];
      for (std::size_t at = 0; at < sizeof room; at += 1024) room[at] = 1;
      Sleep(5);
      for (std::size_t at = 0; at < sizeof room; at += 1024) sum += room[at];
      return 0;
    });
  }
  sim.RunFor(5);
  EXPECT_EQ(sum, 256u);
}

std::string MixedRun() {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  SimulatedDevice& pad = sim.AddDevice({});
  const Handle event = CreateEventA(false, false);
  bodies.Start("repeat", [&] {
    for (;;) {
      Sleep(10);
      keybd_event(65, 30, 0, 0);
    }
    return 0u;
  });
  bodies.Start("notification", [&] {
    for (;;) {
      WaitForSingleObject(event, 17);
      mouse_event(MOUSEEVENTF_MOVE, 1, 2, 0, 0);
      Sleep(3);
    }
    return 0u;
  });
  bodies.Tick(5, [&] {
    if (pad.State().rgbButtons[0]) SetEvent(event);
    return 0;
  });
  StateChange press;
  press.hasButtons = true;
  press.buttons = {1};
  pad.ChangeAt(40, press);
  press.buttons = {};
  pad.ChangeAt(90, press);
  sim.RunFor(1000);
  return sim.EventText();
}

TEST(Scheduler, TheSameCallsGiveTheSameRun) {
  const std::string first = MixedRun();
  EXPECT_GT(first.size(), 1000u);
  EXPECT_EQ(first.substr(0, first.find('\n', first.find('\n') + 1) + 1),
            "10 key 41 1e 0\n17 mouse 1 1 2 0\n");
  EXPECT_EQ(MixedRun(), first);
}

TEST(Scheduler, AnHourOfPlayHasEveryTickAndEveryWake) {
  Simulation sim;
  Bodies bodies;
  std::uint32_t ticks = 0;
  std::uint32_t wakes = 0;
  bodies.Tick(5, [&] {
    ++ticks;
    return 0;
  });
  bodies.Start("repeat", [&] {
    for (;;) {
      Sleep(10);
      ++wakes;
    }
    return 0u;
  });
  sim.RunFor(3'600'000);
  EXPECT_EQ(ticks, 720'000u);
  EXPECT_EQ(wakes, 360'000u);
}

TEST(SchedulerDeathTest, RefusesAnotherSystemThread) {
  EXPECT_DEATH(
      {
        Simulation sim;
        std::thread stranger([] { Sleep(1); });
        stranger.join();
      },
      "a system thread calls that is not the simulation's own");
}

TEST(SchedulerDeathTest, SaysWhoWaitsForWhatWhenNothingIsDueAnyMore) {
  EXPECT_DEATH(
      {
        Simulation sim;
        Bodies bodies;
        const Handle event = CreateEventA(true, false);
        const Handle thread = bodies.Start("repeat", [event] {
          WaitForSingleObject(event, WAIT_FOREVER);
          return 0;
        });
        WaitForSingleObject(thread, WAIT_FOREVER);
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
          for (;;) Sleep(0);
          return 0u;
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
        bodies.Start("inner", [&] {
          sim.RunFor(1);
          return 0;
        });
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
