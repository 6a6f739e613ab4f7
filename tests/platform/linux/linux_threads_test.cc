#include "app/platform/linux/linux_threads.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/waiting.h"
#include "tests/host/processes.h"

namespace platform {
namespace {

constexpr std::uint32_t kLong = 60000;  // ms; a test that waits this long has failed

// What a test's thread works with.
struct Shared {
  Handle Start(std::uint32_t (*entry)(void*), const char* name = "test") {
    return threads.CreateThread(entry, this, name, &started);
  }
  void ExpectEnd(Handle thread) {
    EXPECT_EQ(threads.WaitForSingleObject(thread, kLong), WAIT_OBJECT_0);
  }
  std::uint32_t ExitCode(Handle thread) {
    std::uint32_t exitCode = 0xBAD;
    EXPECT_TRUE(threads.GetExitCodeThread(thread, &exitCode));
    return exitCode;
  }
  bool Reaches(int wanted) {
    for (std::uint32_t waited = 0; waited < kLong && steps < wanted; ++waited) clock.Sleep(1);
    return steps >= wanted;
  }

  // The thread that was started last, in its wait; for nothing else it sleeps.
  bool ComesToWait() {
    return Reaches(1) &&
           kelvaro::tests::Eventually([this] { return kelvaro::tests::IsAsleep(started); });
  }

  LinuxThreads threads;
  LinuxClock clock;
  std::int32_t started = 0;
  Handle event = kInvalidHandle;
  Handle second = kInvalidHandle;
  std::atomic<int> steps{0};
  std::atomic<std::uint32_t> result{0};
  std::atomic<std::int32_t> id{0};
  std::string name;
};

// Those that are ended by force are parked and may look at it for ever, so it is never freed.
class LinuxThreadsTest : public testing::Test {
 protected:
  static Shared& NeverFreed() {
    static auto* const kept = new std::vector<std::unique_ptr<Shared>>;
    return *kept->emplace_back(new Shared);
  }
  Shared& shared = NeverFreed();
  LinuxThreads& threads = shared.threads;
};

std::uint32_t WaitForEvent(void* parameter) {
  auto* shared = static_cast<Shared*>(parameter);
  ++shared->steps;
  shared->result = shared->threads.WaitForSingleObject(shared->event, kLong);
  ++shared->steps;
  return 7;
}

std::uint32_t End(void*) { return 42; }

TEST_F(LinuxThreadsTest, ExitCodeIsTheEntrysResultAndStaysWhenItIsTerminatedTooLate) {
  const Handle thread = shared.Start(End);
  ASSERT_NE(thread, kInvalidHandle);
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.ExitCode(thread), 42u);
  EXPECT_FALSE(threads.TerminateThread(thread, 1000));
  EXPECT_EQ(shared.ExitCode(thread), 42u);
  EXPECT_TRUE(threads.CloseHandle(thread));
}

TEST_F(LinuxThreadsTest, ExitCodeIsStillActiveWhileTheThreadRuns) {
  shared.event = threads.CreateEventA(true, false);
  const Handle thread = shared.Start(WaitForEvent);
  EXPECT_EQ(shared.ExitCode(thread), STILL_ACTIVE);
  EXPECT_EQ(threads.WaitForSingleObject(thread, 20), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(shared.event));
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.result, WAIT_OBJECT_0);
}

TEST_F(LinuxThreadsTest, IdIsTheOneThatTheThreadItselfSees) {
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
  EXPECT_EQ(threads.GetCurrentThreadId(), static_cast<std::int32_t>(gettid()));
}

TEST_F(LinuxThreadsTest, NameIsTheThreadsOwnCutAtFifteenBytes) {
  const Handle thread = shared.Start(
      [](void* parameter) -> std::uint32_t {
        char name[32] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        static_cast<Shared*>(parameter)->name = name;
        return 0;
      },
      "notification-thread");
  shared.ExpectEnd(thread);
  EXPECT_EQ(shared.name, "notification-th");
}

TEST_F(LinuxThreadsTest, NoEntryNoThread) {
  EXPECT_EQ(threads.CreateThread(nullptr, nullptr, "none", nullptr), kInvalidHandle);
}

TEST_F(LinuxThreadsTest, AutoResetEventIsResetByTheWaitItEnds) {
  const Handle event = threads.CreateEventA(false, true);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_TRUE(threads.SetEvent(event));  // doesn't count
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST_F(LinuxThreadsTest, ManualResetEventStaysUntilItIsReset) {
  const Handle event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
  EXPECT_TRUE(threads.SetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_EQ(threads.WaitForSingleObject(event, WAIT_FOREVER), WAIT_OBJECT_0);
  EXPECT_TRUE(threads.ResetEvent(event));
  EXPECT_EQ(threads.WaitForSingleObject(event, 0), WAIT_TIMEOUT);
}

TEST_F(LinuxThreadsTest, ATimeOutLastsAtLeastAsLongAsAsked) {
  const Handle event = threads.CreateEventA(false, false);
  const std::int64_t start = MonotonicNow();
  EXPECT_EQ(threads.WaitForSingleObject(event, 20), WAIT_TIMEOUT);
  EXPECT_GE(MonotonicNow() - start, 20 * kNanosecondsPerMillisecond);
}

TEST_F(LinuxThreadsTest, OfSeveralSignalledEventsTheLowestIndexWins) {
  const Handle events[] = {threads.CreateEventA(false, false), threads.CreateEventA(false, true),
                           threads.CreateEventA(false, true)};
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_OBJECT_0 + 2);
  EXPECT_EQ(threads.WaitForMultipleObjects(3, events, 0), WAIT_TIMEOUT);
}

TEST_F(LinuxThreadsTest, AWaitForSeveralEndsWithAnyOfThem) {
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

TEST_F(LinuxThreadsTest, AManualResetEventReleasesAllItsWaiters) {
  shared.event = threads.CreateEventA(true, false);
  std::vector<Handle> waiting;
  for (int i = 0; i < 4; ++i) waiting.push_back(shared.Start(WaitForEvent));
  ASSERT_TRUE(shared.Reaches(4));
  EXPECT_TRUE(threads.SetEvent(shared.event));
  for (const Handle thread : waiting) shared.ExpectEnd(thread);
  EXPECT_EQ(shared.steps, 8);
}

TEST_F(LinuxThreadsTest, AnAutoResetEventReleasesOneWaiterASignal) {
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

TEST_F(LinuxThreadsTest, OperationsOnTheWrongHandleFail) {
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

TEST_F(LinuxThreadsTest, AClosedHandleIsGone) {
  const Handle event = threads.CreateEventA(true, true);
  EXPECT_TRUE(threads.CloseHandle(event));
  EXPECT_FALSE(threads.SetEvent(event));
  EXPECT_FALSE(threads.CloseHandle(event));
  EXPECT_NE(threads.CreateEventA(true, true), event);
}

TEST_F(LinuxThreadsTest, AWaitTakesOneToSixtyFourHandles) {
  std::vector<Handle> events(65);
  for (Handle& event : events) event = threads.CreateEventA(true, false);
  EXPECT_EQ(threads.WaitForMultipleObjects(0, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(65, events.data(), 0), WAIT_FAILED);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_TIMEOUT);
  threads.SetEvent(events[63]);
  EXPECT_EQ(threads.WaitForMultipleObjects(64, events.data(), 0), WAIT_OBJECT_0 + 63);
}

TEST_F(LinuxThreadsTest, AThreadRunsOnWithoutItsHandle) {
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

TEST_F(LinuxThreadsTest, ATerminatedThreadNeverReturnsFromASleep) {
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

TEST_F(LinuxThreadsTest, ATerminatedThreadStopsWhereItNextReachesForThePlatform) {
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

TEST_F(LinuxThreadsTest, ATerminatedWaiterTakesNoSignalAway) {
  shared.event = threads.CreateEventA(false, false);
  const Handle thread = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.ComesToWait());
  EXPECT_TRUE(threads.TerminateThread(thread, 9));
  EXPECT_TRUE(threads.SetEvent(shared.event));
  shared.clock.Sleep(20);
  EXPECT_EQ(threads.WaitForSingleObject(shared.event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(shared.steps, 1);
}

TEST_F(LinuxThreadsTest, TerminationWakesThoseWhoWaitForTheThread) {
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

TEST_F(LinuxThreadsTest, AnEventWakesNobodyWhoWaitsForAnother) {
  shared.event = threads.CreateEventA(false, false);
  const Handle other = threads.CreateEventA(false, false);
  const Handle thread = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.ComesToWait());
  const auto switches = [&] {
    return kelvaro::tests::StatusWord(shared.started, "voluntary_ctxt_switches:");
  };
  const std::string before = switches();
  for (int i = 0; i < 100; ++i) threads.SetEvent(other);
  shared.clock.Sleep(20);
  EXPECT_NE(before, "");
  EXPECT_EQ(switches(), before);
  threads.SetEvent(shared.event);
  shared.ExpectEnd(thread);
}

TEST_F(LinuxThreadsTest, AHeldWakeComesAtTheEnd) {
  shared.event = threads.CreateEventA(false, false);
  const Handle thread = shared.Start(WaitForEvent);
  ASSERT_TRUE(shared.ComesToWait());
  {
    const HeldWakes untilTheEnd;
    threads.SetEvent(shared.event);
    usleep(20000);
    EXPECT_EQ(shared.steps, 1);
  }
  shared.ExpectEnd(thread);
}

// Otherwise two threads that talk to one another would wait for ever.
TEST_F(LinuxThreadsTest, AHeldWakeComesWhenItsThreadWaits) {
  const HeldWakes untilTheEnd;
  for (const bool bySleep : {false, true}) {
    shared.steps = 0;
    shared.event = threads.CreateEventA(false, false);
    const Handle thread = shared.Start([](void* parameter) -> std::uint32_t {
      auto* mine = static_cast<Shared*>(parameter);
      ++mine->steps;
      mine->threads.WaitForSingleObject(mine->event, WAIT_FOREVER);
      ++mine->steps;
      return 0;
    });
    ASSERT_TRUE(shared.ComesToWait());
    threads.SetEvent(shared.event);
    if (bySleep) {
      EXPECT_TRUE(shared.Reaches(2));
    } else {
      shared.ExpectEnd(thread);
    }
  }
}

}  // namespace
}  // namespace platform
