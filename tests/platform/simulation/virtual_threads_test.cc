#include "app/platform/simulation/virtual_threads.h"

#include <gtest/gtest.h>

#include <set>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

TEST(VirtualThreads, EachHasAnIdOfItsOwnAndTheOutermostIs1) {
  Simulation sim;
  Bodies bodies;
  std::set<std::int32_t> seen{GetCurrentThreadId()};
  EXPECT_EQ(*seen.begin(), 1);
  for (int thread = 0; thread < 3; ++thread) {
    std::int32_t id = 0;
    std::int32_t own = 0;
    bodies.Start(
        "worker",
        [&] {
          own = GetCurrentThreadId();
          Sleep(1);
          EXPECT_EQ(GetCurrentThreadId(), own);
          return 0;
        },
        &id);
    sim.RunFor(1);
    EXPECT_EQ(own, id);
    seen.insert(id);
  }
  std::int32_t timer = 0;
  bodies.Tick(1, [&] {
    timer = GetCurrentThreadId();
    return 0;
  });
  sim.RunFor(1);
  seen.insert(timer);
  EXPECT_EQ(seen.size(), 5u);
  EXPECT_EQ(GetCurrentThreadId(), 1);
}

TEST(VirtualThreads, ExitCodeIsStillActiveUntilTheEnd) {
  Simulation sim;
  Bodies bodies;
  const Handle thread = bodies.Start("worker", [] {
    Sleep(10);
    return 42;
  });
  std::uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, STILL_ACTIVE);
  sim.RunFor(9);
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, STILL_ACTIVE);
  EXPECT_EQ(sim.LivingThreads(), 1u);
  sim.RunFor(1);
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 42u);
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST(VirtualThreads, AWaitForAThreadEndsWhenItEnds) {
  Simulation sim;
  Bodies bodies;
  const Handle thread = bodies.Start("worker", [] {
    Sleep(30);
    return 0;
  });
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
  EXPECT_EQ(WaitForSingleObject(thread, 29), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 29u);
  EXPECT_EQ(WaitForSingleObject(thread, 1000), WAIT_OBJECT_0);
  EXPECT_EQ(sim.Now(), 30u);
  EXPECT_EQ(WaitForSingleObject(thread, WAIT_FOREVER), WAIT_OBJECT_0) << "it stays signalled";
  EXPECT_EQ(sim.Now(), 30u);
}

TEST(VirtualThreads, AThreadRunsOnWithoutItsHandle) {
  Simulation sim;
  Bodies bodies;
  bool ended = false;
  const Handle thread = bodies.Start("worker", [&] {
    Sleep(10);
    ended = true;
    return 0;
  });
  EXPECT_TRUE(CloseHandle(thread));
  EXPECT_FALSE(CloseHandle(thread));
  std::uint32_t code = 0;
  EXPECT_FALSE(GetExitCodeThread(thread, &code));
  EXPECT_FALSE(TerminateThread(thread, 1));
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_FAILED);
  sim.RunFor(10);
  EXPECT_TRUE(ended);
}

TEST(VirtualThreads, ATerminatedThreadNeverGoesOn) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const Handle thread = bodies.Start("stubborn", [&] {
    for (;;) {
      Sleep(10);
      diary.Note("stubborn");
    }
    return 0u;
  });
  bodies.Start("waiter", [&] {
    EXPECT_EQ(WaitForSingleObject(thread, WAIT_FOREVER), WAIT_OBJECT_0);
    diary.Note("waiter");
    return 0;
  });
  sim.RunFor(25);
  EXPECT_TRUE(TerminateThread(thread, 1000));
  std::uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 1000u);
  EXPECT_EQ(sim.LivingThreads(), 1u);
  sim.RunFor(100);
  EXPECT_EQ(diary.text, "stubborn@10 stubborn@20 waiter@25 ");
  EXPECT_TRUE(TerminateThread(thread, 7));
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 1000u) << "the first end counts";
}

TEST(VirtualThreads, TheStackOfATerminatedThreadServesAnother) {
  Simulation sim;
  Bodies bodies;
  std::uint32_t sum = 0;
  for (int round = 0; round < 4; ++round) {
    const Handle thread = bodies.Start("stubborn", [&] {
      volatile std::uint8_t small[3] = {1, 1, 1};
      volatile std::uint8_t large[60000];
      // Other places than the round before.
      for (std::size_t at = static_cast<std::size_t>(round); at < sizeof large; at += 4) {
        large[at] = 1;
      }
      for (;;) {
        sum += small[1] + large[round];
        Sleep(1);
      }
      return 0u;
    });
    sim.RunFor(2);
    TerminateThread(thread, 1);
  }
  // Each ran at once, and 1 and 2 ms later.
  EXPECT_EQ(sum, 4u * 3 * 2);
}

TEST(VirtualThreads, ATerminatedWaiterTakesNoSignal) {
  Simulation sim;
  Bodies bodies;
  const Handle event = CreateEventA(false, false);
  const Handle thread = bodies.Start("waiter", [event] {
    WaitForSingleObject(event, WAIT_FOREVER);
    return 0;
  });
  sim.RunFor(1);
  TerminateThread(thread, 1);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST(VirtualThreads, AThreadMayTerminateItself) {
  Simulation sim;
  Bodies bodies;
  Handle self = kInvalidHandle;
  bool passed = false;
  self = bodies.Start("suicidal", [&] {
    Sleep(5);
    TerminateThread(self, 9);
    passed = true;
    return 0;
  });
  EXPECT_EQ(WaitForSingleObject(self, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(sim.Now(), 5u);
  std::uint32_t code = 0;
  EXPECT_TRUE(GetExitCodeThread(self, &code));
  EXPECT_EQ(code, 9u);
  EXPECT_FALSE(passed);
}

TEST(VirtualThreads, OneThreadMayTerminateAnotherThatHasNotBegun) {
  Simulation sim;
  Bodies bodies;
  bool begun = false;
  const Handle thread = bodies.Start("late", [&] {
    begun = true;
    return 0;
  });
  TerminateThread(thread, 3);
  sim.RunFor(10);
  EXPECT_FALSE(begun);
  EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
}

TEST(VirtualThreads, AnAutoResetEventEndsOneWait) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const Handle event = CreateEventA(false, false);
  for (const char* name : {"first", "second"}) {
    bodies.Start(name, [&, name] {
      WaitForSingleObject(event, WAIT_FOREVER);
      diary.Note(name);
      return 0;
    });
  }
  sim.RunFor(5);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT) << "the signal went to the first waiter";
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 ");
  SetEvent(event);
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 second@10 ");
  SetEvent(event);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT) << "signals aren't counted";
}

TEST(VirtualThreads, AManualResetEventEndsAllWaitsUntilItIsReset) {
  Simulation sim;
  Bodies bodies;
  Diary diary;
  const Handle event = CreateEventA(true, false);
  for (const char* name : {"first", "second"}) {
    bodies.Start(name, [&, name] {
      WaitForSingleObject(event, WAIT_FOREVER);
      diary.Note(name);
      return 0;
    });
  }
  sim.RunFor(5);
  SetEvent(event);
  ResetEvent(event);
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 second@5 ") << "they were woken before the reset";
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  SetEvent(event);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST(VirtualThreads, AnEventMayBeginSignalled) {
  Simulation sim;
  const Handle event = CreateEventA(false, true);
  EXPECT_EQ(WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(event, 3), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 3u);
}

TEST(VirtualThreads, AWaitForSeveralTakesTheLowestSignalledOne) {
  Simulation sim;
  const Handle events[] = {CreateEventA(false, false), CreateEventA(false, true),
                           CreateEventA(false, true)};
  EXPECT_EQ(WaitForMultipleObjects(3, events, WAIT_FOREVER), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(WaitForMultipleObjects(3, events, WAIT_FOREVER), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(WaitForMultipleObjects(3, events, 0), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 0u);
  EXPECT_EQ(WaitForMultipleObjects(3, events, 8), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 8u);
}

TEST(VirtualThreads, AWaitForSeveralTellsWhichOneEndedIt) {
  Simulation sim;
  Bodies bodies;
  const Handle events[] = {CreateEventA(true, false), CreateEventA(false, false)};
  std::vector<std::uint32_t> results;
  bodies.Start("notification", [&] {
    do {
      results.push_back(WaitForMultipleObjects(2, events, WAIT_FOREVER));
    } while (results.back() != WAIT_OBJECT_0);
    return 0;
  });
  sim.RunFor(1);
  SetEvent(events[1]);
  sim.RunFor(1);
  SetEvent(events[1]);
  sim.RunFor(1);
  SetEvent(events[0]);
  sim.RunFor(1);
  EXPECT_EQ(results, (std::vector<std::uint32_t>{1, 1, 0}));
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST(VirtualThreads, ASignalAtTheVeryEndOfAWaitCountsIfItsSenderGoesFirst) {
  Simulation sim;
  Bodies bodies;
  const Handle event = CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Tick(10, [&] {
    SetEvent(event);
    return 0;
  });
  bodies.Start("notification", [&] {
    result = WaitForSingleObject(event, 10);
    return 0;
  });
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_OBJECT_0);
}

TEST(VirtualThreads, ASignalBehindTheEndOfAWaitStays) {
  Simulation sim;
  Bodies bodies;
  const Handle event = CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Start("notification", [&] {
    result = WaitForSingleObject(event, 10);
    return 0;
  });
  bodies.Start("other", [&] {
    Sleep(10);
    SetEvent(event);
    return 0;
  });
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_TIMEOUT);
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST(VirtualThreads, AnEventMayBeClosedWhileAThreadWaitsForIt) {
  Simulation sim;
  Bodies bodies;
  const Handle event = CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Start("waiter", [&] {
    result = WaitForSingleObject(event, 10);
    return 0;
  });
  sim.RunFor(1);
  EXPECT_TRUE(CloseHandle(event));
  EXPECT_FALSE(SetEvent(event));
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_TIMEOUT);
}

TEST(VirtualThreads, BadHandlesAndCountsAreRefused) {
  Simulation sim;
  Bodies bodies;
  const Handle event = CreateEventA(false, true);
  const Handle thread = bodies.Start("worker", [] { return 0; });
  std::uint32_t code = 5;
  for (const Handle bad : {Handle{0}, Handle{99}, kInvalidHandle}) {
    EXPECT_FALSE(SetEvent(bad));
    EXPECT_FALSE(ResetEvent(bad));
    EXPECT_FALSE(CloseHandle(bad));
    EXPECT_FALSE(GetExitCodeThread(bad, &code));
    EXPECT_FALSE(TerminateThread(bad, 0));
    EXPECT_EQ(WaitForSingleObject(bad, 0), WAIT_FAILED);
    const Handle two[] = {event, bad};
    EXPECT_EQ(WaitForMultipleObjects(2, two, 0), WAIT_FAILED);
  }
  EXPECT_FALSE(SetEvent(thread));
  EXPECT_FALSE(ResetEvent(thread));
  EXPECT_FALSE(GetExitCodeThread(event, &code));
  EXPECT_FALSE(TerminateThread(event, 0));
  EXPECT_EQ(code, 5u);
  const std::vector<Handle> many(65, event);
  EXPECT_EQ(WaitForMultipleObjects(0, many.data(), 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(65, many.data(), 0), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(64, many.data(), 0), WAIT_OBJECT_0);
}

TEST(VirtualThreads, EachKeepsItsPriority) {
  Simulation sim;
  Bodies bodies;
  EXPECT_EQ(GetCurrentThreadPriority(), THREAD_PRIORITY_NORMAL);
  bodies.Start("worker", [] {
    EXPECT_EQ(GetCurrentThreadPriority(), THREAD_PRIORITY_NORMAL);
    EXPECT_TRUE(SetCurrentThreadPriority(THREAD_PRIORITY_TIME_CRITICAL));
    Sleep(5);
    EXPECT_EQ(GetCurrentThreadPriority(), THREAD_PRIORITY_TIME_CRITICAL);
    return 0;
  });
  EXPECT_TRUE(SetCurrentThreadPriority(-15));
  sim.RunFor(10);
  EXPECT_EQ(GetCurrentThreadPriority(), -15);
  EXPECT_FALSE(SetCurrentThreadPriority(16));
  EXPECT_FALSE(SetCurrentThreadPriority(-16));
  EXPECT_EQ(GetCurrentThreadPriority(), -15);
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST(VirtualThreads, FailAsPlanned) {
  Simulation sim;
  Bodies bodies;
  sim.FailNext("CreateThread");
  EXPECT_EQ(bodies.Start("worker", [] { return 0; }), kInvalidHandle);
  const Handle thread = bodies.Start("worker", [] { return 0; });
  EXPECT_NE(thread, kInvalidHandle);
  sim.FailNext("CreateEventA", DIERR_INVALIDPARAM, 2);
  EXPECT_EQ(CreateEventA(true, true), kInvalidHandle);
  EXPECT_EQ(CreateEventA(true, true), kInvalidHandle);
  const Handle event = CreateEventA(false, false);
  EXPECT_NE(event, kInvalidHandle);

  sim.FailAlways("SetEvent");
  EXPECT_FALSE(SetEvent(event));
  EXPECT_FALSE(SetEvent(event));
  EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT) << "it did nothing";
  sim.Mend("SetEvent");
  EXPECT_TRUE(SetEvent(event));

  sim.FailNext("ResetEvent");
  EXPECT_FALSE(ResetEvent(event));
  sim.FailNext("WaitForSingleObject");
  EXPECT_EQ(WaitForSingleObject(event, WAIT_FOREVER), WAIT_FAILED);
  sim.FailNext("WaitForMultipleObjects");
  EXPECT_EQ(WaitForMultipleObjects(1, &event, WAIT_FOREVER), WAIT_FAILED);
  EXPECT_EQ(WaitForMultipleObjects(1, &event, WAIT_FOREVER), WAIT_OBJECT_0);

  std::uint32_t code = 0;
  sim.FailNext("GetExitCodeThread");
  EXPECT_FALSE(GetExitCodeThread(thread, &code));
  sim.FailNext("TerminateThread");
  EXPECT_FALSE(TerminateThread(thread, 8));
  EXPECT_EQ(sim.LivingThreads(), 1u);
  sim.FailNext("CloseHandle");
  EXPECT_FALSE(CloseHandle(event));
  EXPECT_TRUE(CloseHandle(event));
  sim.FailNext("SetCurrentThreadPriority");
  EXPECT_FALSE(SetCurrentThreadPriority(1));
  sim.FailNext("GetCurrentThreadPriority");
  EXPECT_EQ(GetCurrentThreadPriority(), THREAD_PRIORITY_ERROR_RETURN);
  EXPECT_EQ(GetCurrentThreadPriority(), 0);
}

TEST(VirtualThreads, CallsAreKeptInOrder) {
  Simulation sim;
  Bodies bodies;
  CreateEventA(true, false);
  EXPECT_TRUE(sim.Calls().empty());
  sim.LogCalls(true);
  const Handle event = CreateEventA(false, false);
  const Handle thread = bodies.Start("notification", [] {
    SetCurrentThreadPriority(15);
    return 0;
  });
  WaitForSingleObject(thread, 5);
  SetEvent(event);
  ResetEvent(event);
  std::uint32_t code = 0;
  GetExitCodeThread(thread, &code);
  TerminateThread(thread, 1000);
  CloseHandle(thread);
  Sleep(1);
  const std::vector<std::string> expected{"CreateEventA auto",
                                          "CreateThread notification",
                                          "SetCurrentThreadPriority 15",
                                          "SetEvent 2",
                                          "ResetEvent 2",
                                          "GetExitCodeThread 3",
                                          "TerminateThread 3 1000",
                                          "CloseHandle 3"};
  EXPECT_EQ(sim.Calls(), expected);
  sim.ClearCalls();
  sim.LogCalls(false);
  SetEvent(event);
  EXPECT_TRUE(sim.Calls().empty());
}

}  // namespace
}  // namespace platform::simulation
