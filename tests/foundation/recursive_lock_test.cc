#include "foundation/recursive_lock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

// A machine in memory, and virtual threads on it. Those that are due at the same time run in the
// order of their making, and this one last.
class RecursiveLockTest : public ::testing::Test {
 protected:
  void Go(std::function<void()> body) {
    bodies.push_back(std::make_unique<std::function<void()>>(std::move(body)));
    const platform::Handle thread =
        platform::threads().CreateThread(&Entry, bodies.back().get(), "test", nullptr);
    ASSERT_NE(thread, platform::kInvalidHandle);
    platform::threads().CloseHandle(thread);
  }

  static void ExpectFree(const RecursiveLock& lock) {
    EXPECT_EQ(lock.Owner(), -1);
    EXPECT_EQ(lock.Holders(), 0);
    EXPECT_EQ(lock.Depth(), 0);
    EXPECT_FALSE(lock.IsTaken());
  }

  platform::simulation::Simulation sim;

 private:
  static std::uint32_t Entry(void* body) {
    (*static_cast<std::function<void()>*>(body))();
    return 0;
  }

  std::vector<std::unique_ptr<std::function<void()>>> bodies;
};

TEST_F(RecursiveLockTest, IsFreeAtFirstAndAfterAsManyReleasesAsAcquires) {
  RecursiveLock lock;
  ExpectFree(lock);
  EXPECT_TRUE(lock.Acquire(1));
  EXPECT_EQ(lock.Owner(), platform::threads().GetCurrentThreadId());
  EXPECT_EQ(lock.Holders(), 1);
  EXPECT_EQ(lock.Depth(), 1);
  EXPECT_TRUE(lock.Acquire(1));
  EXPECT_EQ(lock.Holders(), 1);  // the same thread once more is no second holder
  EXPECT_EQ(lock.Depth(), 2);
  EXPECT_TRUE(lock.Release());
  EXPECT_EQ(lock.Owner(), platform::threads().GetCurrentThreadId());
  EXPECT_EQ(lock.Depth(), 1);
  EXPECT_TRUE(lock.IsTaken());
  EXPECT_TRUE(lock.Release());
  ExpectFree(lock);
  EXPECT_EQ(sim.Now(), 0u);
}

TEST_F(RecursiveLockTest, ReleaseOfAFreeLockFails) {
  RecursiveLock lock;
  EXPECT_FALSE(lock.Release());
  ExpectFree(lock);
  lock.Acquire(1);
  lock.Release();
  EXPECT_FALSE(lock.Release());
  ExpectFree(lock);
}

TEST_F(RecursiveLockTest, ReleaseByAnotherThreadChangesNothing) {
  RecursiveLock lock;
  lock.Acquire(1);
  lock.Acquire(1);
  bool released = true;
  Go([&] { released = lock.Release(); });
  sim.RunFor(0);
  EXPECT_FALSE(released);
  EXPECT_EQ(lock.Owner(), platform::threads().GetCurrentThreadId());
  EXPECT_EQ(lock.Holders(), 1);
  EXPECT_EQ(lock.Depth(), 2);
}

TEST_F(RecursiveLockTest, OneTryTakesAFreeLockAndTheOwnersOwn) {
  RecursiveLock byTry;
  RecursiveLock byWaitOfNone;
  for (const std::int32_t depth : {1, 2}) {
    EXPECT_TRUE(byTry.TryAcquire());
    EXPECT_EQ(byTry.Depth(), depth);
    EXPECT_TRUE(byWaitOfNone.Acquire(0));
    EXPECT_EQ(byWaitOfNone.Depth(), depth);
  }
  EXPECT_EQ(byTry.Owner(), platform::threads().GetCurrentThreadId());
}

TEST_F(RecursiveLockTest, TryAcquireOfAnothersLockGivesUpAtOnce) {
  RecursiveLock lock;
  lock.Acquire(1);
  bool byTry = true;
  bool byWaitOfNone = true;
  bool seen = false;
  Go([&] {
    seen = lock.IsTaken();
    byTry = lock.TryAcquire();
    byWaitOfNone = lock.Acquire(0);
    EXPECT_EQ(sim.Now(), 0u);
  });
  sim.RunFor(0);
  EXPECT_TRUE(seen);
  EXPECT_FALSE(byTry);
  EXPECT_FALSE(byWaitOfNone);
  EXPECT_EQ(lock.Holders(), 1);
  EXPECT_EQ(lock.Depth(), 1);
  lock.Release();
  ExpectFree(lock);
}

TEST_F(RecursiveLockTest, AcquireTriesAgainAfterEachWait) {
  struct Row {
    std::uint32_t waitMs;
    std::uint64_t taken;  // the lock is free from 5 ms on
  };
  for (const Row& row : {Row{1, 5}, Row{2, 6}, Row{3, 6}, Row{5, 5}, Row{7, 7}}) {
    RecursiveLock lock;
    const std::uint64_t start = sim.Now();
    Go([&] {
      lock.Acquire(1);
      platform::clock().Sleep(5);
      lock.Release();
    });
    std::uint64_t taken = 0;
    Go([&] {
      EXPECT_TRUE(lock.Acquire(row.waitMs));
      EXPECT_EQ(lock.Owner(), platform::threads().GetCurrentThreadId());
      taken = sim.Now() - start;
      lock.Release();
    });
    sim.RunFor(20);
    EXPECT_EQ(taken, row.taken) << row.waitMs;
    ExpectFree(lock);
  }
}

TEST_F(RecursiveLockTest, NobodyGetsInBeforeTheLastRelease) {
  RecursiveLock lock;
  std::uint64_t taken = 0;
  Go([&] {
    lock.Acquire(1);
    lock.Acquire(1);
    platform::clock().Sleep(5);
    lock.Release();
    platform::clock().Sleep(5);
    lock.Release();
  });
  Go([&] {
    lock.Acquire(1);
    taken = sim.Now();
    lock.Release();
  });
  sim.RunFor(20);
  EXPECT_EQ(taken, 10u);
}

// A lock that is released and taken again in one go is never seen free by those who wait.
TEST_F(RecursiveLockTest, IsNotFair) {
  RecursiveLock lock;
  bool taken = false;
  lock.Acquire(1);
  Go([&] {
    lock.Acquire(1);
    taken = true;
    lock.Release();
  });
  for (int i = 0; i < 100; ++i) {
    platform::clock().Sleep(1);
    lock.Release();
    lock.Acquire(1);
  }
  EXPECT_FALSE(taken);
  lock.Release();
  sim.RunFor(1);
  EXPECT_TRUE(taken);
}

TEST_F(RecursiveLockTest, AThreadThatIsEndedByForceLeavesItTaken) {
  RecursiveLock lock;
  std::function<void()> body = [&] {
    lock.Acquire(1);
    platform::clock().Sleep(1000);
  };
  const platform::Handle thread = platform::threads().CreateThread(
      [](void* parameter) -> std::uint32_t {
        (*static_cast<std::function<void()>*>(parameter))();
        return 0;
      },
      &body, "test", nullptr);
  sim.RunFor(1);
  platform::threads().TerminateThread(thread, 1000);
  platform::threads().CloseHandle(thread);
  EXPECT_TRUE(lock.IsTaken());
  EXPECT_FALSE(lock.TryAcquire());
  EXPECT_FALSE(lock.Release());
}

TEST_F(RecursiveLockTest, GuardHoldsForItsScope) {
  RecursiveLock lock;
  {
    const LockGuard outer(lock);
    EXPECT_EQ(lock.Depth(), 1);
    {
      const LockGuard inner(lock);
      EXPECT_EQ(lock.Depth(), 2);
    }
    EXPECT_EQ(lock.Depth(), 1);
  }
  ExpectFree(lock);
}

TEST_F(RecursiveLockTest, GuardWaitsAMillisecondBetweenTries) {
  RecursiveLock lock;
  Go([&] {
    const LockGuard guard(lock);
    platform::clock().Sleep(3);
  });
  std::uint64_t taken = 0;
  Go([&] {
    const LockGuard guard(lock);
    taken = sim.Now();
  });
  sim.RunFor(10);
  EXPECT_EQ(taken, 3u);
}

// ---- order ----

constexpr LockRank kRanks[] = {LockRank::Device, LockRank::Mouse, LockRank::Profile,
                               LockRank::Repeat};
const char* const kNames[] = {"Device", "Mouse", "Profile", "Repeat"};

TEST_F(RecursiveLockTest, RanksMayBeTakenInRisingOrder) {
  RecursiveLock device(LockRank::Device);
  RecursiveLock mouse(LockRank::Mouse);
  RecursiveLock profile(LockRank::Profile);
  RecursiveLock repeat(LockRank::Repeat);
  for (RecursiveLock* lock : {&device, &mouse, &profile, &repeat}) EXPECT_TRUE(lock->Acquire(1));
  // Who holds a lock may take it again whatever came after it.
  for (RecursiveLock* lock : {&device, &mouse, &profile, &repeat}) {
    EXPECT_TRUE(lock->Acquire(1));
    EXPECT_TRUE(lock->TryAcquire());
    EXPECT_EQ(lock->Depth(), 3);
  }
}

TEST_F(RecursiveLockTest, ALockThatWasReleasedCountsNoMore) {
  RecursiveLock device(LockRank::Device);
  RecursiveLock repeat(LockRank::Repeat);
  repeat.Acquire(1);
  repeat.Release();
  EXPECT_TRUE(device.Acquire(1));
}

TEST_F(RecursiveLockTest, LocksWithoutARankMayBeTakenInAnyOrder) {
  RecursiveLock repeat(LockRank::Repeat);
  RecursiveLock first;
  RecursiveLock second;
  EXPECT_TRUE(first.Acquire(1));
  EXPECT_TRUE(repeat.Acquire(1));
  EXPECT_TRUE(second.Acquire(1));
}

TEST_F(RecursiveLockTest, OrderIsKeptForEachThreadByItself) {
  RecursiveLock device(LockRank::Device);
  RecursiveLock repeat(LockRank::Repeat);
  bool taken = false;
  repeat.Acquire(1);
  Go([&] {
    taken = device.Acquire(1);
    platform::clock().Sleep(5);
    device.Release();
  });
  sim.RunFor(1);
  EXPECT_TRUE(taken);
  EXPECT_EQ(repeat.Owner(), platform::threads().GetCurrentThreadId());
}

TEST_F(RecursiveLockTest, ALockThatIsGoneCountsNoMore) {
  std::optional<RecursiveLock> repeat(LockRank::Repeat);
  RecursiveLock device(LockRank::Device);
  repeat->Acquire(1);
  repeat.reset();
  EXPECT_TRUE(device.Acquire(1));
}

#ifdef NDEBUG

TEST_F(RecursiveLockTest, AReleaseBuildDoesNotLookAtTheOrder) {
  RecursiveLock device(LockRank::Device);
  RecursiveLock repeat(LockRank::Repeat);
  EXPECT_TRUE(repeat.Acquire(1));
  EXPECT_TRUE(device.Acquire(1));
}

#else

using RecursiveLockDeathTest = RecursiveLockTest;

TEST_F(RecursiveLockDeathTest, ADebugBuildEndsAtTheWrongOrderAndNamesBothRanks) {
  for (int held = 0; held < 4; ++held) {
    for (int taken = 0; taken <= held; ++taken) {
      RecursiveLock first(kRanks[held]);
      RecursiveLock second(kRanks[taken]);
      first.Acquire(1);
      const std::string message = std::string("Lock order: ") + kNames[taken] + " is taken while " +
                                  kNames[held] + " is held";
      EXPECT_DEATH(second.Acquire(1), message);
      EXPECT_DEATH(second.TryAcquire(), message);
      EXPECT_DEATH(second.Acquire(0), message);
    }
  }
}

TEST_F(RecursiveLockDeathTest, AHighRankFarBelowIsFoundToo) {
  RecursiveLock mouse(LockRank::Mouse);
  RecursiveLock unranked;
  RecursiveLock profile(LockRank::Profile);
  RecursiveLock device(LockRank::Device);
  device.Acquire(1);
  profile.Acquire(1);
  unranked.Acquire(1);
  device.Acquire(1);
  EXPECT_DEATH(mouse.Acquire(1), "Lock order: Mouse is taken while Profile is held");
}

TEST_F(RecursiveLockDeathTest, TheWrongOrderIsFoundOnVirtualThreads) {
  RecursiveLock device(LockRank::Device);
  RecursiveLock repeat(LockRank::Repeat);
  Go([&] {
    repeat.Acquire(1);
    platform::clock().Sleep(1);
    device.Acquire(1);
  });
  EXPECT_DEATH(sim.RunFor(5), "Lock order: Device is taken while Repeat is held");
}

#endif

}  // namespace
}  // namespace kelvaro
