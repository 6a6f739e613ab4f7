// Locks and workers on real threads: what only shows when they truly run at the same time.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "app/platform/platform.h"
#include "foundation/recursive_lock.h"
#include "foundation/worker_thread.h"

namespace kelvaro {
namespace {

using Time = std::chrono::steady_clock;

constexpr int kThreads = 4;

// Installed once and for all: a thread that was cut off may call at any time.
platform::Platform RealGroups() {
  static platform::ThisMachine machine;
  return machine.Groups();
}

const platform::InstalledPlatform kInstalled(RealGroups());

class Worker : public WorkerThread {
 public:
  explicit Worker(std::function<void(Worker&)> body)
      : WorkerThread("worker"), body(std::move(body)) {}
  ~Worker() override { Stop(); }

  using WorkerThread::stopEvent;
  using WorkerThread::StopRequested;

 protected:
  std::uint32_t Run() override {
    body(*this);
    return 0;
  }

 private:
  const std::function<void(Worker&)> body;
};

// Runs `body` on kThreads threads that begin together, until all of them have ended.
void Together(const std::function<void(int)>& body) {
  std::atomic<int> ready{0};
  std::vector<std::unique_ptr<Worker>> workers;
  for (int i = 0; i < kThreads; ++i) {
    workers.push_back(std::make_unique<Worker>([&, i](Worker&) {
      ++ready;
      while (ready.load() < kThreads) platform::clock().Sleep(0);
      body(i);
    }));
    ASSERT_TRUE(workers.back()->Start(false, 0));
  }
  for (const std::unique_ptr<Worker>& worker : workers) {
    while (worker->IsRunning()) platform::clock().Sleep(1);
  }
}

void ExpectFree(const RecursiveLock& lock) {
  EXPECT_EQ(lock.Owner(), -1);
  EXPECT_EQ(lock.Holders(), 0);
  EXPECT_EQ(lock.Depth(), 0);
}

TEST(Contention, NoIncrementUnderTheLockIsLost) {
  constexpr int kRounds = 20000;
  RecursiveLock lock(LockRank::Device);
  std::int64_t count = 0;  // plain, so that the thread sanitizer sees a race
  Together([&](int) {
    for (int i = 0; i < kRounds; ++i) {
      lock.Acquire(1);
      ++count;
      lock.Release();
    }
  });
  EXPECT_EQ(count, std::int64_t{kThreads} * kRounds);
  ExpectFree(lock);
}

// Goes on until the race for the free lock has been lost a few times, which shows as more than one
// holder; where threads hardly ever run at once, the time ends it.
TEST(Contention, ALostRaceGivesItsCountBack) {
  constexpr int kLostRaces = 5;
  RecursiveLock lock;
  std::int64_t count = 0;
  std::atomic<std::int64_t> taken{0};
  std::atomic<int> lost{0};
  const Time::time_point end = Time::now() + std::chrono::seconds(3);
  Together([&](int) {
    std::int64_t own = 0;
    for (std::uint32_t round = 0; lost < kLostRaces; ++round) {
      if (round % 1024 == 1023 && Time::now() > end) break;
      if (!lock.TryAcquire()) continue;
      ++count;
      ++own;
      if (lock.Depth() != 1 || lock.Owner() != platform::threads().GetCurrentThreadId())
        ADD_FAILURE();
      if (lock.Holders() > 1) ++lost;
      if (!lock.Release()) ADD_FAILURE();
    }
    taken += own;
  });
  RecordProperty("lostRaces", lost);
  EXPECT_EQ(count, taken.load());
  EXPECT_GT(count, 0);
  ExpectFree(lock);
}

TEST(Contention, NestedAcquiresKeepTheOthersOut) {
  constexpr int kRounds = 2000;
  RecursiveLock lock;
  std::int64_t inside = 0;
  std::int64_t most = 0;
  Together([&](int) {
    for (int i = 0; i < kRounds; ++i) {
      const LockGuard outer(lock);
      ++inside;
      {
        const LockGuard inner(lock);
        EXPECT_EQ(lock.Depth(), 2);
      }
      most = std::max(most, inside);
      --inside;
    }
  });
  EXPECT_EQ(most, 1);
  EXPECT_EQ(inside, 0);
  ExpectFree(lock);
}

TEST(Contention, RanksNestOnAllThreadsAtOnce) {
  constexpr int kRounds = 1000;
  RecursiveLock device(LockRank::Device);
  RecursiveLock mouse(LockRank::Mouse);
  RecursiveLock profile(LockRank::Profile);
  RecursiveLock repeat(LockRank::Repeat);
  std::int64_t count = 0;
  Together([&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      RecursiveLock own(LockRank::Mouse);  // comes and goes while the others are looked through
      const LockGuard guardDevice(device);
      const LockGuard guardOwn(thread % 2 == 0 ? mouse : own);
      const LockGuard guardProfile(profile);
      const LockGuard guardRepeat(repeat);
      ++count;
    }
  });
  EXPECT_EQ(count, std::int64_t{kThreads} * kRounds);
}

TEST(Contention, OnlyTheOwnerReleases) {
  RecursiveLock lock;
  lock.Acquire(1);
  Together([&](int) {
    for (int i = 0; i < 1000; ++i) {
      EXPECT_FALSE(lock.Release());
      EXPECT_FALSE(lock.TryAcquire());
      EXPECT_TRUE(lock.IsTaken());
    }
  });
  EXPECT_EQ(lock.Owner(), platform::threads().GetCurrentThreadId());
  EXPECT_EQ(lock.Depth(), 1);
  EXPECT_TRUE(lock.Release());
  ExpectFree(lock);
}

TEST(Workers, StartDoesNotMissARunThatIsOverAtOnce) {
  std::atomic<int> runs{0};
  for (int i = 0; i < 50; ++i) {
    Worker worker([&](Worker&) { ++runs; });
    ASSERT_TRUE(worker.Start(true, 0));
    while (worker.IsRunning()) platform::clock().Sleep(1);
  }
  EXPECT_EQ(runs, 50);
}

TEST(Workers, StopEndsARunThatWaitsForTheEvent) {
  bool ended = false;  // plain: the wait for the thread hands it over
  Worker worker([&](Worker& self) {
    platform::threads().WaitForSingleObject(self.stopEvent, platform::WAIT_FOREVER);
    ended = true;
  });
  worker.stopTimeout = 600000;
  ASSERT_TRUE(worker.Start(true, 0));
  const Time::time_point start = Time::now();
  worker.Stop();
  EXPECT_TRUE(ended);
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_LT(Time::now() - start, std::chrono::seconds(300));  // well below the time of the force
}

TEST(Workers, AnEndIsSignalledToThoseWhoWaitForIt) {
  const platform::Handle exitEvent = platform::threads().CreateEventA(true, true);
  int result = 0;
  {
    Worker worker([&](Worker&) {
      platform::clock().Sleep(20);
      result = 7;
    });
    worker.exitEvent = exitEvent;
    ASSERT_TRUE(worker.Start(false, 0));
    EXPECT_EQ(platform::threads().WaitForSingleObject(exitEvent, 60000), platform::WAIT_OBJECT_0);
    EXPECT_EQ(result, 7);
  }
  platform::threads().CloseHandle(exitEvent);
}

TEST(Workers, ARunThatIgnoresTheStopIsEndedAfterTheTimeout) {
  static std::atomic<int> rounds{0};
  static RecursiveLock held;
  Worker worker([](Worker&) {
    held.Acquire(1);
    for (;;) {
      ++rounds;
      platform::clock().Sleep(1);
    }
  });
  worker.stopTimeout = 50;
  ASSERT_TRUE(worker.Start(true, 0));
  while (rounds == 0) platform::clock().Sleep(1);
  const Time::time_point start = Time::now();
  worker.Stop();
  EXPECT_GE(Time::now() - start, std::chrono::milliseconds(50));
  EXPECT_FALSE(worker.IsRunning());
  // The round that was under way may still be counted, but none after it.
  const int before = rounds;
  platform::clock().Sleep(50);
  EXPECT_LE(rounds, before + 1);
  EXPECT_TRUE(held.IsTaken());
  EXPECT_FALSE(held.TryAcquire());
}

// Linux can't stop such a Run there, and its worker is gone before it comes to its end. Windows
// stops it in its tracks, so that it never comes there.
TEST(Workers, ARunThatWasCutOffTouchesItsWorkerNoMore) {
#ifdef _WIN32
  constexpr bool kGoesOn = false;
#else
  constexpr bool kGoesOn = true;
#endif
  static std::atomic<std::uint64_t> rounds;
  static std::atomic<bool> go;
  static std::atomic<bool> over;
  rounds = 0;
  go = false;
  over = false;
  auto worker = std::make_unique<Worker>([](Worker&) {
    while (!go) ++rounds;
    over = true;
  });
  worker->stopTimeout = 50;
  ASSERT_TRUE(worker->Start(true, 0));
  while (rounds == 0) platform::clock().Sleep(1);
  worker.reset();
  for (std::uint64_t before = 0; !kGoesOn && rounds != before;) {
    before = rounds;
    platform::clock().Sleep(50);
  }
  go = true;
  while (kGoesOn && !over) platform::clock().Sleep(1);
  platform::clock().Sleep(
      50);  // time enough for an address or thread sanitizer to see what it shouldn't do
  EXPECT_EQ(over, kGoesOn);
}

TEST(Workers, StateIsAskedForFromAllSidesWhileItChanges) {
  Worker worker([](Worker& self) {
    while (!self.StopRequested()) platform::clock().Sleep(1);
  });
  std::atomic<bool> done{false};
  std::vector<std::unique_ptr<Worker>> lookers;
  std::atomic<int> seen{0};
  for (int i = 0; i < 2; ++i) {
    lookers.push_back(std::make_unique<Worker>([&](Worker&) {
      while (!done) {
        if (worker.IsRunning()) ++seen;
        platform::clock().Sleep(1);
      }
    }));
    ASSERT_TRUE(lookers.back()->Start(true, 0));
  }
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(worker.Start(true, 0));
    const int before = seen;
    while (seen == before) platform::clock().Sleep(1);
    worker.RequestStop();
    while (worker.IsRunning()) platform::clock().Sleep(1);
  }
  done = true;
  lookers.clear();
}

}  // namespace
}  // namespace kelvaro
