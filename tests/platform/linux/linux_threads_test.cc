#include "app/platform/linux/linux_threads.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <vector>

#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

constexpr std::uint32_t kLong = 10000;  // ms; a test that waits this long has failed

// What a test's thread works with.
struct Shared {
  LinuxThreads threads;
  LinuxClock clock;
  Handle event = kInvalidHandle;
  Handle second = kInvalidHandle;
  std::atomic<int> steps{0};
  std::atomic<std::uint32_t> result{0};
  std::atomic<std::int32_t> id{0};
  std::string name;
};

std::uint32_t WaitForEvent(void* parameter) {
  auto* shared = static_cast<Shared*>(parameter);
  ++shared->steps;
  shared->result = shared->threads.WaitForSingleObject(shared->event, kLong);
  ++shared->steps;
  return 7;
}

bool Reaches(const std::atomic<int>& steps, int wanted) {
  for (std::uint32_t waited = 0; waited < kLong && steps < wanted; ++waited) LinuxClock().Sleep(1);
  return steps >= wanted;
}

TEST(LinuxThreads, ExitCodeIsTheEntrysResult) {
  Shared shared;
  const Handle thread = shared.threads.CreateThread([](void*) -> std::uint32_t { return 42; },
                                                    nullptr, "answer", nullptr);
  ASSERT_NE(thread, kInvalidHandle);
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(shared.threads.GetExitCodeThread(thread, &exitCode));
  EXPECT_EQ(exitCode, 42u);
  EXPECT_TRUE(shared.threads.CloseHandle(thread));
}

TEST(LinuxThreads, ExitCodeIsStillActiveWhileTheThreadRuns) {
  Shared shared;
  shared.event = shared.threads.CreateEventA(true, false);
  const Handle thread = shared.threads.CreateThread(WaitForEvent, &shared, "waits", nullptr);
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(shared.threads.GetExitCodeThread(thread, &exitCode));
  EXPECT_EQ(exitCode, STILL_ACTIVE);
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, 20), WAIT_TIMEOUT);
  EXPECT_TRUE(shared.threads.SetEvent(shared.event));
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  EXPECT_EQ(shared.result, WAIT_OBJECT_0);
}

TEST(LinuxThreads, IdIsTheOneThatTheThreadItselfSees) {
  Shared shared;
  std::int32_t id = 0;
  const Handle thread = shared.threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        auto* mine = static_cast<Shared*>(parameter);
        mine->id = mine->threads.GetCurrentThreadId();
        return 0;
      },
      &shared, "id", &id);
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  EXPECT_GT(id, 0);
  EXPECT_EQ(shared.id, id);
  EXPECT_NE(id, shared.threads.GetCurrentThreadId());
  EXPECT_EQ(shared.threads.GetCurrentThreadId(), static_cast<std::int32_t>(gettid()));
}

TEST(LinuxThreads, NameIsTheThreadsOwnCutAtFifteenBytes) {
  Shared shared;
  const Handle thread = shared.threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        char name[32] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        static_cast<Shared*>(parameter)->name = name;
        return 0;
      },
      &shared, "notification-thread", nullptr);
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  EXPECT_EQ(shared.name, "notification-th");
}

TEST(LinuxThreads, NoEntryNoThread) {
  LinuxThreads threads;
  EXPECT_EQ(threads.CreateThread(nullptr, nullptr, "none", nullptr), kInvalidHandle);
}

TEST(LinuxThreads, AutoResetEventIsResetByTheWaitItEnds) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(false, true);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_TRUE(threads.SetEvent(event));  // doesn't count
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST(LinuxThreads, ManualResetEventStaysUntilItIsReset) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_TRUE(threads.ResetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST(LinuxThreads, ATimeOutLastsAtLeastAsLongAsAsked) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(false, false);
  const std::int64_t start = MonotonicNow();
  EXPECT_EQ(threads.WaitForSingleObject(event, 20), WAIT_TIMEOUT);
  EXPECT_GE(MonotonicNow() - start, 20 * kNanosecondsPerMillisecond);
}

TEST(LinuxThreads, OfSeveralSignalledEventsTheLowestIndexWins) {
  LinuxThreads threads;
  const Handle events[] = {threads.CreateEventA(false, false), threads.CreateEventA(false, true),
                           threads.CreateEventA(false, true)};
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_TIMEOUT);
}

TEST(LinuxThreads, AWaitForSeveralEndsWithAnyOfThem) {
  Shared shared;
  shared.event = shared.threads.CreateEventA(true, false);
  shared.second = shared.threads.CreateEventA(false, false);
  const Handle thread = shared.threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        auto* mine = static_cast<Shared*>(parameter);
        const Handle events[] = {mine->event, mine->second};
        ++mine->steps;
        return mine->threads.WaitForMultipleObjects(2, events, WAIT_FOREVER);
      },
      &shared, "several", nullptr);
  ASSERT_TRUE(Reaches(shared.steps, 1));
  EXPECT_TRUE(shared.threads.SetEvent(shared.second));
  EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(shared.threads.GetExitCodeThread(thread, &exitCode));
  EXPECT_EQ(exitCode, WAIT_OBJECT_0 + 1);
}

TEST(LinuxThreads, AManualResetEventReleasesAllItsWaiters) {
  Shared shared;
  shared.event = shared.threads.CreateEventA(true, false);
  std::vector<Handle> waiting;
  for (int i = 0; i < 4; ++i)
    waiting.push_back(shared.threads.CreateThread(WaitForEvent, &shared, "waits", nullptr));
  ASSERT_TRUE(Reaches(shared.steps, 4));
  EXPECT_TRUE(shared.threads.SetEvent(shared.event));
  for (const Handle thread : waiting)
    EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  EXPECT_EQ(shared.steps, 8);
}

TEST(LinuxThreads, AnAutoResetEventReleasesOneWaiterASignal) {
  Shared shared;
  shared.event = shared.threads.CreateEventA(false, false);
  std::vector<Handle> waiting;
  for (int i = 0; i < 3; ++i)
    waiting.push_back(shared.threads.CreateThread(WaitForEvent, &shared, "waits", nullptr));
  for (int released = 1; released <= 3; ++released) {
    ASSERT_TRUE(Reaches(shared.steps, 2 + released));
    EXPECT_TRUE(shared.threads.SetEvent(shared.event));
    ASSERT_TRUE(Reaches(shared.steps, 3 + released));
    shared.clock.Sleep(20);
    EXPECT_EQ(shared.steps, 3 + released);
  }
  for (const Handle thread : waiting)
    EXPECT_EQ(shared.threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
}

TEST(LinuxThreads, OperationsOnTheWrongHandleFail) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(true, true);
  std::uint32_t exitCode = 5;
  EXPECT_FALSE(threads.GetExitCodeThread(event, &exitCode));
  EXPECT_EQ(exitCode, 5u);
  EXPECT_FALSE(threads.TerminateThread(event, 1));
  for (const Handle bad : {kInvalidHandle, Handle{0}, event + 1}) {
    EXPECT_FALSE(threads.SetEvent(bad));
    EXPECT_FALSE(threads.ResetEvent(bad));
    EXPECT_FALSE(threads.CloseHandle(bad));
    EXPECT_FALSE(threads.GetExitCodeThread(bad, &exitCode));
    EXPECT_EQ(threads.WaitForSingleObject(bad, 0), WAIT_FAILED);
    const Handle both[] = {event, bad};
    EXPECT_EQ(threads.WaitForMultipleObjects(2, both, 0), WAIT_FAILED);
  }
}

TEST(LinuxThreads, AClosedHandleIsGone) {
  LinuxThreads threads;
  const Handle event = threads.CreateEventA(true, true);
  EXPECT_TRUE(threads.CloseHandle(event));
  EXPECT_FALSE(threads.SetEvent(event));
  EXPECT_FALSE(threads.CloseHandle(event));
  EXPECT_NE(threads.CreateEventA(true, true), event);
}

TEST(LinuxThreads, AWaitTakesOneToSixtyFourHandles) {
  LinuxThreads threads;
  std::vector<Handle> events(65);
  for (Handle& event : events) event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForMultipleObjects(0, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(65, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_TIMEOUT);
  threads.SetEvent(events[63]);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_OBJECT_0 + 63);
}

TEST(LinuxThreads, AThreadRunsOnWithoutItsHandle) {
  Shared shared;
  shared.event = shared.threads.CreateEventA(true, false);
  const Handle thread = shared.threads.CreateThread(WaitForEvent, &shared, "waits", nullptr);
  ASSERT_TRUE(Reaches(shared.steps, 1));
  EXPECT_TRUE(shared.threads.CloseHandle(thread));
  EXPECT_TRUE(shared.threads.SetEvent(shared.event));
  EXPECT_TRUE(Reaches(shared.steps, 2));
  shared.clock.Sleep(20);  // its last lines still use `shared`
}

// For threads that are ended by force: parked, they may look at it for ever.
Shared* NeverFreed() {
  static auto* const kept = new std::vector<Shared*>;
  kept->push_back(new Shared);
  return kept->back();
}

// Counts on for as long as its calls through the platform come back.
std::uint32_t CountForEver(void* parameter) {
  auto* shared = static_cast<Shared*>(parameter);
  for (;;) {
    ++shared->steps;
    shared->clock.Sleep(1);
  }
}

TEST(LinuxThreads, ATerminatedThreadNeverReturnsFromItsNextCall) {
  Shared* const shared = NeverFreed();
  const Handle thread = shared->threads.CreateThread(CountForEver, shared, "counts", nullptr);
  ASSERT_TRUE(Reaches(shared->steps, 3));
  EXPECT_TRUE(shared->threads.TerminateThread(thread, 1000));
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(shared->threads.GetExitCodeThread(thread, &exitCode));
  EXPECT_EQ(exitCode, 1000u);
  EXPECT_EQ(shared->threads.WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
  shared->clock.Sleep(20);
  const int afterwards = shared->steps;
  shared->clock.Sleep(30);
  EXPECT_EQ(shared->steps, afterwards);
}

TEST(LinuxThreads, ATerminatedWaiterTakesNoSignalAway) {
  Shared* const shared = NeverFreed();
  shared->event = shared->threads.CreateEventA(false, false);
  const Handle thread = shared->threads.CreateThread(WaitForEvent, shared, "waits", nullptr);
  ASSERT_TRUE(Reaches(shared->steps, 1));
  shared->clock.Sleep(20);  // into its wait
  EXPECT_TRUE(shared->threads.TerminateThread(thread, 9));
  EXPECT_TRUE(shared->threads.SetEvent(shared->event));
  shared->clock.Sleep(20);
  EXPECT_EQ(shared->threads.WaitForSingleObject(shared->event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(shared->steps, 1);
}

TEST(LinuxThreads, TerminationWakesWhoeverWaitsForTheThread) {
  Shared* const shared = NeverFreed();
  shared->event = shared->threads.CreateEventA(false, false);
  const Handle victim = shared->threads.CreateThread(WaitForEvent, shared, "victim", nullptr);
  ASSERT_TRUE(Reaches(shared->steps, 1));
  shared->second = victim;
  const Handle watcher = shared->threads.CreateThread(
      [](void* parameter) -> std::uint32_t {
        auto* mine = static_cast<Shared*>(parameter);
        ++mine->steps;
        return mine->threads.WaitForSingleObject(mine->second, kLong);
      },
      shared, "watcher", nullptr);
  ASSERT_TRUE(Reaches(shared->steps, 2));
  EXPECT_TRUE(shared->threads.TerminateThread(victim, 9));
  EXPECT_EQ(shared->threads.WaitForSingleObject(watcher, kLong), WAIT_OBJECT_0);
  std::uint32_t exitCode = 1;
  EXPECT_TRUE(shared->threads.GetExitCodeThread(watcher, &exitCode));
  EXPECT_EQ(exitCode, WAIT_OBJECT_0);
}

TEST(LinuxThreads, AThreadThatHasEndedKeepsItsExitCode) {
  LinuxThreads threads;
  const Handle thread =
      threads.CreateThread([](void*) -> std::uint32_t { return 3; }, nullptr, "ends", nullptr);
  EXPECT_EQ(threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  EXPECT_FALSE(threads.TerminateThread(thread, 1000));
  std::uint32_t exitCode = 0;
  EXPECT_TRUE(threads.GetExitCodeThread(thread, &exitCode));
  EXPECT_EQ(exitCode, 3u);
}

}  // namespace
}  // namespace platform
