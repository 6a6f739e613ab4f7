#include "app/platform/linux/linux_threads.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <string>

#include "app/platform/linux/linux_timers.h"
#include "app/platform/linux/waiting.h"
#include "tests/host/processes.h"
#include "tests/host/refused_calls.h"
#include "tests/platform/machine/threads_fixture.h"

namespace platform {
namespace {

using kelvaro::tests::kNoThreads;
using kelvaro::tests::WhereRefused;
using LinuxThreadsTest = ThreadsTest;

TEST_F(LinuxThreadsTest, IdIsTheKernels) {
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

TEST_F(LinuxThreadsTest, NoThreadAndNoTimerIsGivenWhereTheSystemHasNone) {
  WhereRefused(kNoThreads, [&] {
    EXPECT_EQ(threads.CreateThread([](void*) { return 0u; }, nullptr, "none", nullptr),
              kInvalidHandle);
    EXPECT_EQ(LinuxTimers().timeSetEvent(
                  10, 1, [](std::uint32_t, void*) {}, nullptr, TIME_PERIODIC),
              0u);
  });
}

TEST_F(LinuxThreadsTest, AClosedHandleIsGone) {
  const Handle event = threads.CreateEventA(true, true);
  EXPECT_TRUE(threads.CloseHandle(event));
  EXPECT_FALSE(threads.SetEvent(event));
  EXPECT_FALSE(threads.CloseHandle(event));
  EXPECT_NE(threads.CreateEventA(true, true), event);
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
