#include "app/platform/linux/thread_priority.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "app/platform/threads.h"
#include "tests/platform/linux/new_process.h"

namespace platform {
namespace {

int NiceNow() { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); }

// Each on a thread of its own, since the priority stays with the thread.
TEST(ThreadPriority, StartsAtNormal) {
  std::thread([] { EXPECT_EQ(PriorityOfCurrentThread(), THREAD_PRIORITY_NORMAL); }).join();
}

TEST(ThreadPriority, TellsWhatWasLastSet) {
  std::thread([] {
    const int before = NiceNow();
    ASSERT_TRUE(SetPriorityOfCurrentThread(-2));  // never refused
    EXPECT_EQ(PriorityOfCurrentThread(), -2);
    EXPECT_EQ(NiceNow(), std::min(before + 2, 19));
  }).join();
}

TEST(ThreadPriority, RefusesWhatIsOutOfRange) {
  std::thread([] {
    EXPECT_FALSE(SetPriorityOfCurrentThread(16));
    EXPECT_FALSE(SetPriorityOfCurrentThread(-16));
    EXPECT_EQ(PriorityOfCurrentThread(), 0);
  }).join();
}

TEST(ThreadPriority, ARefusalLeavesTheThreadAsItWas) {
  std::thread([] {
    const int policy = sched_getscheduler(0);
    const int nice = NiceNow();
    if (SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL)) {
      EXPECT_EQ(PriorityOfCurrentThread(), THREAD_PRIORITY_TIME_CRITICAL);
      EXPECT_TRUE((sched_getscheduler(0) & ~SCHED_RESET_ON_FORK) == SCHED_RR || NiceNow() < nice);
    } else {
      EXPECT_EQ(PriorityOfCurrentThread(), THREAD_PRIORITY_NORMAL);
      EXPECT_EQ(sched_getscheduler(0) & ~SCHED_RESET_ON_FORK, policy & ~SCHED_RESET_ON_FORK);
      EXPECT_EQ(NiceNow(), nice);
    }
  }).join();
}

TEST(ThreadPriority, BackFromTimeCriticalIsAnOrdinaryThread) {
  std::thread([] {
    const int nice = NiceNow();
    SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
    ASSERT_TRUE(SetPriorityOfCurrentThread(THREAD_PRIORITY_NORMAL));
    EXPECT_EQ(sched_getscheduler(0) & ~SCHED_RESET_ON_FORK, SCHED_OTHER);
    EXPECT_EQ(NiceNow(), nice);
  }).join();
}

TEST(ThreadPriority, AChildOfATimeCriticalThreadStartsAsAnOrdinaryOne) {
  std::thread([] {
    const int nice = NiceNow();
    SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
    std::thread([nice] {
      StartAtNormalPriority();
      EXPECT_EQ(PriorityOfCurrentThread(), THREAD_PRIORITY_NORMAL);
      EXPECT_EQ(sched_getscheduler(0) & ~SCHED_RESET_ON_FORK, SCHED_OTHER);
      EXPECT_EQ(NiceNow(), nice);
    }).join();
  }).join();
}

TEST(FirstThreadPriority, TimeCriticalIsANiceValueThere) {
  InANewProcess([] {
    const int nice = NiceNow();
    const bool set = SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
    EXPECT_HOLDS(sched_getscheduler(0) == SCHED_OTHER);
    EXPECT_HOLDS(NiceNow() == (set ? std::max(nice - 15, -20) : nice));
    EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_TIME_CRITICAL);
  });
}

TEST(FirstThreadPriority, IsTimeCriticalForThoseItStartsEvenWhereTheNiceValueIsRefused) {
  InANewProcess([] {
    BecomeNobody();
    const int nice = NiceNow();
    EXPECT_HOLDS(!SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL));
    EXPECT_HOLDS(NiceNow() == nice);
    EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_TIME_CRITICAL);
    std::thread([] {
      EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_NORMAL);
      EXPECT_HOLDS(!SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL));
      EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_NORMAL);
    }).join();
  });
}

TEST(FirstThreadPriority, AnyOtherOneThatIsRefusedLeavesItAsItWas) {
  InANewProcess([] {
    BecomeNobody();
    EXPECT_HOLDS(!SetPriorityOfCurrentThread(14));
    EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_NORMAL);
  });
}

TEST(FirstThreadPriority, GoesBackToNormal) {
  InANewProcess([] {
    const int nice = NiceNow();
    SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
    EXPECT_HOLDS(SetPriorityOfCurrentThread(THREAD_PRIORITY_NORMAL));
    EXPECT_HOLDS(PriorityOfCurrentThread() == THREAD_PRIORITY_NORMAL);
    EXPECT_HOLDS(NiceNow() == nice);
  });
}

TEST(PriorityClass, HighIsANiceValueThatThreadsCountOnFrom) {
  InANewProcess([] {
    const int nice = NiceNow();
    if (!SetPriorityClassOfProcess(HIGH_PRIORITY_CLASS)) {
      EXPECT_HOLDS(NiceNow() == nice);
      return;
    }
    EXPECT_HOLDS(NiceNow() == -10);
    EXPECT_HOLDS(SetPriorityOfCurrentThread(-3));
    EXPECT_HOLDS(NiceNow() == -7);
    std::thread([] {
      StartAtNormalPriority();
      EXPECT_HOLDS(NiceNow() == -10);
      EXPECT_HOLDS(SetPriorityOfCurrentThread(-2));
      EXPECT_HOLDS(NiceNow() == -8);
    }).join();
  });
}

TEST(PriorityClass, ARefusalLeavesTheProcessAsItWas) {
  InANewProcess([] {
    BecomeNobody();
    const int nice = NiceNow();
    EXPECT_HOLDS(!SetPriorityClassOfProcess(HIGH_PRIORITY_CLASS));
    EXPECT_HOLDS(NiceNow() == nice);
  });
}

TEST(PriorityClass, TakesNoOtherClass) {
  InANewProcess([] {
    const int nice = NiceNow();
    EXPECT_HOLDS(!SetPriorityClassOfProcess(0x20));
    EXPECT_HOLDS(!SetPriorityClassOfProcess(0));
    EXPECT_HOLDS(NiceNow() == nice);
  });
}

}  // namespace
}  // namespace platform
