// Threads and events, as every system has them.
#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "tests/platform/machine/threads_fixture.h"

namespace platform {
namespace {

using Time = std::chrono::steady_clock;

std::uint32_t End(void*) { return 42; }

TEST_F(ThreadsTest, ExitCodeIsTheEntrysResultAndStaysWhenItIsTerminatedTooLate) {
  const Handle thread = shared.Start(End);
  ASSERT_NE(thread, kInvalidHandle);
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.ExitCode(thread), 42u);
  EXPECT_FALSE(threads.TerminateThread(thread, 1000));
  EXPECT_EQ(shared.ExitCode(thread), 42u);
  EXPECT_TRUE(threads.CloseHandle(thread));
}

TEST_F(ThreadsTest, ExitCodeIsStillActiveWhileTheThreadRuns) {
  shared.event = threads.CreateEventA(true, false);
  const Handle thread = shared.Start(WaitForEvent);
  EXPECT_EQ(shared.ExitCode(thread), STILL_ACTIVE);
  EXPECT_EQ(threads.WaitForSingleObject(thread, 20), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(shared.event));
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.result, WAIT_OBJECT_0);
}

TEST_F(ThreadsTest, IdIsTheOneThatTheThreadItselfSees) {
  std::int32_t id = 0;
  const Handle thread = threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        auto* mine = static_cast<Shared*>(parameter);
        mine->id = mine->threads.GetCurrentThreadId();
        return 0;
      },
      &shared, "id", &id);
  shared.ExpectEnd(thread);
  EXPECT_GT(id, 0);
  EXPECT_EQ(shared.id, id);
  EXPECT_NE(id, threads.GetCurrentThreadId());
}

TEST_F(ThreadsTest, NoEntryNoThread) {
  EXPECT_EQ(threads.CreateThread(nullptr, nullptr, "none", nullptr), kInvalidHandle);
}

TEST_F(ThreadsTest, AutoResetEventIsResetByTheWaitItEnds) {
  const Handle event = threads.CreateEventA(false, true);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_TRUE(threads.SetEvent(event));  // doesn't count
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST_F(ThreadsTest, ManualResetEventStaysUntilItIsReset) {
  const Handle event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_TRUE(threads.ResetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST_F(ThreadsTest, ATimeOutLastsAtLeastAsLongAsAsked) {
  const Handle event = threads.CreateEventA(false, false);
  const auto start = Time::now();
  EXPECT_EQ(threads.WaitForSingleObject(event, 20), WAIT_TIMEOUT);
  EXPECT_GE(Time::now() - start, std::chrono::milliseconds(20));
}

TEST_F(ThreadsTest, OfSeveralSignalledEventsTheLowestIndexWins) {
  const Handle events[] = {threads.CreateEventA(false, false), threads.CreateEventA(false, true),
                           threads.CreateEventA(false, true)};
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_TIMEOUT);
}

TEST_F(ThreadsTest, AWaitForSeveralEndsWithAnyOfThem) {
  shared.event = threads.CreateEventA(true, false);
  shared.second = threads.CreateEventA(false, false);
  const Handle thread = shared.Start([](void* parameter) -> std::uint32_t {
    auto* mine = static_cast<Shared*>(parameter);
    const Handle events[] = {mine->event, mine->second};
    ++mine->steps;
    return mine->threads.WaitForMultipleObjects(2, events, WAIT_FOREVER);
  });
  ASSERT_TRUE(shared.Reaches(1));
  EXPECT_TRUE(threads.SetEvent(shared.second));
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.ExitCode(thread), WAIT_OBJECT_0 + 1);
}

TEST_F(ThreadsTest, AManualResetEventReleasesAllItsWaiters) {
  shared.event = threads.CreateEventA(true, false);
  std::vector<Handle> waiting;
  for (int i = 0; i < 4; ++i) waiting.push_back(shared.Start(WaitForEvent));
  ASSERT_TRUE(shared.Reaches(4));
  EXPECT_TRUE(threads.SetEvent(shared.event));
  for (const Handle thread : waiting) shared.ExpectEnd(thread);
  EXPECT_EQ(shared.steps, 8);
}

TEST_F(ThreadsTest, AnAutoResetEventReleasesOneWaiterASignal) {
  shared.event = threads.CreateEventA(false, false);
  std::vector<Handle> waiting;
  for (int i = 0; i < 3; ++i) waiting.push_back(shared.Start(WaitForEvent));
  for (int released = 1; released <= 3; ++released) {
    ASSERT_TRUE(shared.Reaches(2 + released));
    EXPECT_TRUE(threads.SetEvent(shared.event));
    ASSERT_TRUE(shared.Reaches(3 + released));
    shared.clock.Sleep(20);
    EXPECT_EQ(shared.steps, 3 + released);
  }
  for (const Handle thread : waiting) shared.ExpectEnd(thread);
}

TEST_F(ThreadsTest, OperationsOnTheWrongHandleFail) {
  const Handle event = threads.CreateEventA(true, true);
  std::uint32_t exitCode = 5;
  EXPECT_FALSE(threads.GetExitCodeThread(event, &exitCode));
  EXPECT_EQ(exitCode, 5u);
  EXPECT_FALSE(threads.TerminateThread(event, 1));
  for (const Handle bad : {kInvalidHandle, Handle{0}, event + (1 << 20)}) {
    EXPECT_FALSE(threads.SetEvent(bad));
    EXPECT_FALSE(threads.ResetEvent(bad));
    EXPECT_FALSE(threads.CloseHandle(bad));
    EXPECT_FALSE(threads.GetExitCodeThread(bad, &exitCode));
    EXPECT_EQ(threads.WaitForSingleObject(bad, 0), WAIT_FAILED);
    const Handle both[] = {event, bad};
    EXPECT_EQ(threads.WaitForMultipleObjects(2, both, 0), WAIT_FAILED);
  }
}

TEST_F(ThreadsTest, AWaitTakesOneToSixtyFourHandles) {
  std::vector<Handle> events(65);
  for (Handle& event : events) event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForMultipleObjects(0, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(65, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_TIMEOUT);
  threads.SetEvent(events[63]);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_OBJECT_0 + 63);
}

TEST_F(ThreadsTest, AThreadRunsOnWithoutItsHandle) {
  shared.event = threads.CreateEventA(true, false);
  const Handle thread = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.Reaches(1));
  EXPECT_TRUE(threads.CloseHandle(thread));
  EXPECT_TRUE(threads.SetEvent(shared.event));
  EXPECT_TRUE(shared.Reaches(2));
}

// Counts on for as long as its calls through the platform come back.
std::uint32_t CountForEver(void* parameter) {
  auto* shared = static_cast<Shared*>(parameter);
  for (;;) {
    ++shared->steps;
    shared->clock.Sleep(1);
  }
}

TEST_F(ThreadsTest, ATerminatedThreadNeverReturnsFromASleep) {
  const Handle thread = shared.Start(CountForEver);
  ASSERT_TRUE(shared.Reaches(3));
  EXPECT_TRUE(threads.TerminateThread(thread, 1000));
  EXPECT_EQ(shared.ExitCode(thread), 1000u);
  EXPECT_EQ(threads.WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
  // One that had come back already is counted later.
  const int afterwards = shared.steps;
  shared.clock.Sleep(50);
  EXPECT_LE(shared.steps, afterwards + 1);
}

TEST_F(ThreadsTest, ATerminatedThreadStopsWhereItNextReachesForThePlatform) {
  const Handle thread = shared.Start([](void* parameter) -> std::uint32_t {
    auto* mine = static_cast<Shared*>(parameter);
    ++mine->steps;
    while (mine->result == 0) {
    }
    platform::threads();
    ++mine->steps;
    return 0;
  });
  ASSERT_TRUE(shared.Reaches(1));
  EXPECT_TRUE(threads.TerminateThread(thread, 9));
  shared.result = 1;
  shared.clock.Sleep(30);
  EXPECT_EQ(shared.steps, 1);
}

TEST_F(ThreadsTest, ATerminatedWaiterTakesNoSignalAway) {
  shared.event = threads.CreateEventA(false, false);
  const Handle thread = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.ComesToWait());
  EXPECT_TRUE(threads.TerminateThread(thread, 9));
  EXPECT_TRUE(threads.SetEvent(shared.event));
  shared.clock.Sleep(20);
  EXPECT_EQ(threads.WaitForSingleObject(shared.event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(shared.steps, 1);
}

TEST_F(ThreadsTest, TerminationWakesThoseWhoWaitForTheThread) {
  shared.event = threads.CreateEventA(false, false);
  const Handle victim = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.Reaches(1));
  shared.second = victim;
  const Handle watcher = shared.Start([](void* parameter) -> std::uint32_t {
    auto* mine = static_cast<Shared*>(parameter);
    ++mine->steps;
    return mine->threads.WaitForSingleObject(mine->second, kLong);
  });
  ASSERT_TRUE(shared.Reaches(2));
  EXPECT_TRUE(threads.TerminateThread(victim, 9));
  shared.ExpectEnd(watcher);
  EXPECT_EQ(shared.ExitCode(watcher), WAIT_OBJECT_0);
}

}  // namespace
}  // namespace platform
