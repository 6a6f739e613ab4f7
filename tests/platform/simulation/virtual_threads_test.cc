#include "app/platform/simulation/virtual_threads.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/platform/simulation/virtual_thread.h"

namespace platform::simulation {
namespace {

class VirtualThreadsTest : public ThreadedTest {
 protected:
  void LetTwoWaitFor(Handle event) {
    for (const char* name : {"first", "second"}) {
      bodies.Start(name, [this, name, event] {
        threads().WaitForSingleObject(event, WAIT_FOREVER);
        diary.Note(name);
      });
    }
    sim.RunFor(5);
  }
};

TEST_F(VirtualThreadsTest, EachHasAnIdOfItsOwnAndTheOutermostIs1) {
  std::set<std::int32_t> seen{threads().GetCurrentThreadId()};
  EXPECT_EQ(*seen.begin(), 1);
  for (int thread = 0; thread < 3; ++thread) {
    std::int32_t id = 0;
    std::int32_t own = 0;
    bodies.Start(
        "worker",
        [&] {
          own = threads().GetCurrentThreadId();
          clock().Sleep(1);
          EXPECT_EQ(threads().GetCurrentThreadId(), own);
          return 0;
        },
        &id);
    sim.RunFor(1);
    EXPECT_EQ(own, id);
    seen.insert(id);
  }
  std::int32_t timer = 0;
  bodies.Tick(1, [&] { timer = threads().GetCurrentThreadId(); });
  sim.RunFor(1);
  seen.insert(timer);
  EXPECT_EQ(seen.size(), 5u);
  EXPECT_EQ(threads().GetCurrentThreadId(), 1);
}

TEST_F(VirtualThreadsTest, ExitCodeIsStillActiveUntilTheEnd) {
  const Handle thread = bodies.Start("worker", [] {
    clock().Sleep(10);
    return 42;
  });
  std::uint32_t code = 0;
  EXPECT_TRUE(threads().GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, STILL_ACTIVE);
  sim.RunFor(9);
  EXPECT_TRUE(threads().GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, STILL_ACTIVE);
  EXPECT_EQ(sim.LivingThreads(), 1u);
  sim.RunFor(1);
  EXPECT_TRUE(threads().GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 42u);
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST_F(VirtualThreadsTest, AWaitForAThreadEndsWhenItEnds) {
  const Handle thread = bodies.Start("worker", [] { clock().Sleep(30); });
  EXPECT_EQ(threads().WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
  EXPECT_EQ(threads().WaitForSingleObject(thread, 29), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 29u);
  EXPECT_EQ(threads().WaitForSingleObject(thread, 1000), WAIT_OBJECT_0);
  EXPECT_EQ(sim.Now(), 30u);
  EXPECT_EQ(threads().WaitForSingleObject(thread, WAIT_FOREVER), WAIT_OBJECT_0)
      << "it stays signalled";
  EXPECT_EQ(sim.Now(), 30u);
}

TEST_F(VirtualThreadsTest, AThreadRunsOnWithoutItsHandle) {
  bool ended = false;
  const Handle thread = bodies.Start("worker", [&] {
    clock().Sleep(10);
    ended = true;
  });
  EXPECT_TRUE(threads().CloseHandle(thread));
  EXPECT_FALSE(threads().CloseHandle(thread));
  std::uint32_t code = 0;
  EXPECT_FALSE(threads().GetExitCodeThread(thread, &code));
  EXPECT_FALSE(threads().TerminateThread(thread, 1));
  EXPECT_EQ(threads().WaitForSingleObject(thread, 0), WAIT_FAILED);
  sim.RunFor(10);
  EXPECT_TRUE(ended);
}

TEST_F(VirtualThreadsTest, ATerminatedThreadNeverGoesOn) {
  const Handle thread = bodies.Start("stubborn", [&] {
    for (;;) {
      clock().Sleep(10);
      diary.Note("stubborn");
    }
  });
  bodies.Start("waiter", [&] {
    EXPECT_EQ(threads().WaitForSingleObject(thread, WAIT_FOREVER), WAIT_OBJECT_0);
    diary.Note("waiter");
  });
  sim.RunFor(25);
  EXPECT_TRUE(threads().TerminateThread(thread, 1000));
  std::uint32_t code = 0;
  EXPECT_TRUE(threads().GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 1000u);
  EXPECT_EQ(sim.LivingThreads(), 1u);
  sim.RunFor(100);
  EXPECT_EQ(diary.text, "stubborn@10 stubborn@20 waiter@25 ");
  EXPECT_TRUE(threads().TerminateThread(thread, 7));
  EXPECT_TRUE(threads().GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 1000u) << "the first end counts";
}

TEST_F(VirtualThreadsTest, TheStackOfATerminatedThreadServesAnother) {
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
        clock().Sleep(1);
      }
    });
    sim.RunFor(2);
    threads().TerminateThread(thread, 1);
  }
  // Each ran at once, and 1 and 2 ms later.
  EXPECT_EQ(sum, 4u * 3 * 2);
}

TEST_F(VirtualThreadsTest, ATerminatedWaiterTakesNoSignal) {
  const Handle event = threads().CreateEventA(false, false);
  const Handle thread =
      bodies.Start("waiter", [event] { threads().WaitForSingleObject(event, WAIT_FOREVER); });
  sim.RunFor(1);
  threads().TerminateThread(thread, 1);
  threads().SetEvent(event);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, AThreadMayTerminateItself) {
  Handle self = kInvalidHandle;
  bool passed = false;
  self = bodies.Start("suicidal", [&] {
    clock().Sleep(5);
    threads().TerminateThread(self, 9);
    passed = true;
  });
  EXPECT_EQ(threads().WaitForSingleObject(self, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(sim.Now(), 5u);
  std::uint32_t code = 0;
  EXPECT_TRUE(threads().GetExitCodeThread(self, &code));
  EXPECT_EQ(code, 9u);
  EXPECT_FALSE(passed);
}

TEST_F(VirtualThreadsTest, OneThreadMayTerminateAnotherThatHasNotBegun) {
  bool begun = false;
  const Handle thread = bodies.Start("late", [&] { begun = true; });
  threads().TerminateThread(thread, 3);
  sim.RunFor(10);
  EXPECT_FALSE(begun);
  EXPECT_EQ(threads().WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, AnAutoResetEventEndsOneWait) {
  const Handle event = threads().CreateEventA(false, false);
  LetTwoWaitFor(event);
  threads().SetEvent(event);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_TIMEOUT)
      << "the signal went to the first waiter";
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 ");
  threads().SetEvent(event);
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 second@10 ");
  threads().SetEvent(event);
  threads().SetEvent(event);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_TIMEOUT) << "signals aren't counted";
}

TEST_F(VirtualThreadsTest, AManualResetEventEndsAllWaitsUntilItIsReset) {
  const Handle event = threads().CreateEventA(true, false);
  LetTwoWaitFor(event);
  threads().SetEvent(event);
  threads().ResetEvent(event);
  sim.RunFor(5);
  EXPECT_EQ(diary.text, "first@5 second@5 ") << "they were woken before the reset";
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  threads().SetEvent(event);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, AWaitForSeveralTakesTheLowestSignalledOne) {
  const Handle events[] = {threads().CreateEventA(false, false),
                           threads().CreateEventA(false, true),
                           threads().CreateEventA(false, true)};
  EXPECT_EQ(threads().WaitForMultipleObjects(3, events, WAIT_FOREVER), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(threads().WaitForMultipleObjects(3, events, WAIT_FOREVER), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(threads().WaitForMultipleObjects(3, events, 0), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 0u);
  EXPECT_EQ(threads().WaitForMultipleObjects(3, events, 8), WAIT_TIMEOUT);
  EXPECT_EQ(sim.Now(), 8u);
}

TEST_F(VirtualThreadsTest, AWaitForSeveralTellsWhichOneEndedIt) {
  const Handle events[] = {threads().CreateEventA(true, false),
                           threads().CreateEventA(false, false)};
  std::vector<std::uint32_t> results;
  bodies.Start("notification", [&] {
    do {
      results.push_back(threads().WaitForMultipleObjects(2, events, WAIT_FOREVER));
    } while (results.back() != WAIT_OBJECT_0);
  });
  sim.RunFor(1);
  threads().SetEvent(events[1]);
  sim.RunFor(1);
  threads().SetEvent(events[1]);
  sim.RunFor(1);
  threads().SetEvent(events[0]);
  sim.RunFor(1);
  EXPECT_EQ(results, (std::vector<std::uint32_t>{1, 1, 0}));
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST_F(VirtualThreadsTest, ASignalAtTheVeryEndOfAWaitCountsIfItsSenderGoesFirst) {
  const Handle event = threads().CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Tick(10, [&] { threads().SetEvent(event); });
  bodies.Start("notification", [&] { result = threads().WaitForSingleObject(event, 10); });
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, ASignalBehindTheEndOfAWaitStays) {
  const Handle event = threads().CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Start("notification", [&] { result = threads().WaitForSingleObject(event, 10); });
  bodies.Start("other", [&] {
    clock().Sleep(10);
    threads().SetEvent(event);
  });
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_TIMEOUT);
  EXPECT_EQ(threads().WaitForSingleObject(event, 0), WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, AnEventMayBeClosedWhileAThreadWaitsForIt) {
  const Handle event = threads().CreateEventA(false, false);
  std::uint32_t result = WAIT_FAILED;
  bodies.Start("waiter", [&] { result = threads().WaitForSingleObject(event, 10); });
  sim.RunFor(1);
  EXPECT_TRUE(threads().CloseHandle(event));
  EXPECT_FALSE(threads().SetEvent(event));
  sim.RunFor(10);
  EXPECT_EQ(result, WAIT_TIMEOUT);
}

TEST_F(VirtualThreadsTest, BadHandlesAndCountsAreRefused) {
  const Handle event = threads().CreateEventA(false, true);
  const Handle thread = bodies.Start("worker", [] {});
  std::uint32_t code = 5;
  for (const Handle bad : {Handle{0}, Handle{99}, kInvalidHandle}) {
    EXPECT_FALSE(threads().SetEvent(bad));
    EXPECT_FALSE(threads().ResetEvent(bad));
    EXPECT_FALSE(threads().CloseHandle(bad));
    EXPECT_FALSE(threads().GetExitCodeThread(bad, &code));
    EXPECT_FALSE(threads().TerminateThread(bad, 0));
    EXPECT_EQ(threads().WaitForSingleObject(bad, 0), WAIT_FAILED);
    const Handle two[] = {event, bad};
    EXPECT_EQ(threads().WaitForMultipleObjects(2, two, 0), WAIT_FAILED);
  }
  EXPECT_FALSE(threads().SetEvent(thread));
  EXPECT_FALSE(threads().ResetEvent(thread));
  EXPECT_FALSE(threads().GetExitCodeThread(event, &code));
  EXPECT_FALSE(threads().TerminateThread(event, 0));
  EXPECT_EQ(code, 5u);
  const std::vector<Handle> many(65, event);
  EXPECT_EQ(threads().WaitForMultipleObjects(0, many.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads().WaitForMultipleObjects(65, many.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads().WaitForMultipleObjects(64, many.data(), 0), WAIT_OBJECT_0);
}

TEST_F(VirtualThreadsTest, EachKeepsItsPriority) {
  EXPECT_EQ(threads().GetCurrentThreadPriority(), THREAD_PRIORITY_NORMAL);
  bodies.Start("worker", [] {
    EXPECT_EQ(threads().GetCurrentThreadPriority(), THREAD_PRIORITY_NORMAL);
    EXPECT_TRUE(threads().SetCurrentThreadPriority(THREAD_PRIORITY_TIME_CRITICAL));
    clock().Sleep(5);
    EXPECT_EQ(threads().GetCurrentThreadPriority(), THREAD_PRIORITY_TIME_CRITICAL);
  });
  EXPECT_TRUE(threads().SetCurrentThreadPriority(-15));
  sim.RunFor(10);
  EXPECT_EQ(threads().GetCurrentThreadPriority(), -15);
  EXPECT_FALSE(threads().SetCurrentThreadPriority(16));
  EXPECT_FALSE(threads().SetCurrentThreadPriority(-16));
  EXPECT_EQ(threads().GetCurrentThreadPriority(), -15);
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

}  // namespace
}  // namespace platform::simulation
