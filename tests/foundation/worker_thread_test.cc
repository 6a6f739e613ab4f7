#include "foundation/worker_thread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/simulation/simulation.h"

namespace kelvaro {
namespace {

class Worker : public WorkerThread {
 public:
  explicit Worker(std::function<std::uint32_t(Worker&)> body = {})
      : WorkerThread("worker"), body(std::move(body)) {}
  ~Worker() override { Stop(); }

  using WorkerThread::stopEvent;
  using WorkerThread::StopRequested;

  std::function<std::uint32_t(Worker&)> body;
  std::function<void()> atExit;

 protected:
  std::uint32_t Run() override { return body(*this); }
  void OnExit() override {
    if (atExit) atExit();
  }
};

std::uint32_t UntilStopEvent(Worker& worker) {
  platform::threads().WaitForSingleObject(worker.stopEvent, platform::WAIT_FOREVER);
  return 0;
}

std::uint32_t UntilStopRequested(Worker& worker) {
  while (!worker.StopRequested()) platform::clock().Sleep(10);
  return 0;
}

std::uint32_t Forever(Worker&) {
  for (;;) platform::clock().Sleep(10);
}

// A thread that is ready runs when this one waits, even if for no time.
class WorkerThreadTest : public ::testing::Test {
 protected:
  bool IsSignalled(platform::Handle event) {
    return platform::threads().WaitForSingleObject(event, 0) == platform::WAIT_OBJECT_0;
  }

  bool WasCalled(const std::string& operation) {
    const std::vector<std::string>& calls = sim.Calls();
    return std::any_of(calls.begin(), calls.end(), [&](const std::string& call) {
      return call.substr(0, operation.size()) == operation;
    });
  }

  platform::simulation::Simulation sim;
};

TEST_F(WorkerThreadTest, NewOneDoesNotRun) {
  Worker worker(UntilStopEvent);
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_FALSE(worker.StopRequested());
  EXPECT_EQ(worker.stopTimeout, 15000u);
  EXPECT_EQ(worker.exitEvent, platform::kInvalidHandle);
  EXPECT_FALSE(IsSignalled(worker.stopEvent));
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST_F(WorkerThreadTest, StartRunsOnAThreadOfItsOwnName) {
  sim.LogCalls(true);
  std::int32_t id = 0;
  Worker worker([&](Worker& self) {
    id = platform::threads().GetCurrentThreadId();
    return UntilStopEvent(self);
  });
  EXPECT_TRUE(worker.Start(false, 0));
  EXPECT_TRUE(WasCalled("CreateThread worker"));
  EXPECT_TRUE(worker.IsRunning());
  EXPECT_EQ(id, 0);  // nobody waited for it to begin
  sim.RunFor(0);
  EXPECT_NE(id, 0);
  EXPECT_NE(id, platform::threads().GetCurrentThreadId());
  EXPECT_TRUE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, StartWaitsUntilTheThreadHasBegun) {
  bool begun = false;
  Worker worker([&](Worker& self) {
    begun = true;
    return UntilStopEvent(self);
  });
  EXPECT_TRUE(worker.Start(true, 0));
  EXPECT_TRUE(begun);
  EXPECT_EQ(sim.Now(), 1u);  // one wait between two looks
}

TEST_F(WorkerThreadTest, StartDoesNotWaitForeverForARunThatIsOverAtOnce) {
  int runs = 0;
  Worker worker([&](Worker&) {
    ++runs;
    return 0u;
  });
  EXPECT_TRUE(worker.Start(true, 0));
  EXPECT_EQ(runs, 1);
  EXPECT_FALSE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, StartOfARunningOneFailsAndItGoesOn) {
  int runs = 0;
  Worker worker([&](Worker& self) {
    ++runs;
    return UntilStopRequested(self);
  });
  ASSERT_TRUE(worker.Start(true, 0));
  EXPECT_FALSE(worker.Start(true, 0));
  EXPECT_FALSE(worker.Start(false, 5));
  sim.RunFor(100);
  EXPECT_TRUE(worker.IsRunning());
  EXPECT_FALSE(worker.StopRequested());
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(sim.LivingThreads(), 1u);
}

TEST_F(WorkerThreadTest, StartFailsWithoutAThread) {
  Worker worker(UntilStopEvent);
  sim.FailNext("CreateThread");
  EXPECT_FALSE(worker.Start(true, 0));
  EXPECT_FALSE(worker.IsRunning());
  worker.Stop();
  EXPECT_TRUE(worker.Start(true, 0));
  EXPECT_TRUE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, ThreadGivesItselfThePriorityThatIsWantedOrTheCallers) {
  std::int32_t seen = 99;
  Worker worker([&](Worker&) {
    seen = platform::threads().GetCurrentThreadPriority();
    return 0u;
  });
  platform::threads().SetCurrentThreadPriority(7);
  for (const std::int32_t wanted : {platform::THREAD_PRIORITY_TIME_CRITICAL, -2}) {
    EXPECT_TRUE(worker.Start(true, wanted));
    EXPECT_EQ(seen, wanted);
  }
  EXPECT_EQ(WorkerThread::kPriorityOfCaller, -10000);
  EXPECT_TRUE(worker.Start(true, WorkerThread::kPriorityOfCaller));
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(platform::threads().GetCurrentThreadPriority(), 7);
  // A caller that has none to tell counts as a normal one.
  sim.LogCalls(true);
  sim.FailNext("GetCurrentThreadPriority");
  EXPECT_TRUE(worker.Start(true, WorkerThread::kPriorityOfCaller));
  EXPECT_EQ(seen, 0);
  EXPECT_TRUE(WasCalled("SetCurrentThreadPriority 0"));
}

TEST_F(WorkerThreadTest, ARefusedPriorityDoesNoHarm) {
  bool ran = false;
  Worker worker([&](Worker&) {
    ran = true;
    return 0u;
  });
  sim.FailNext("SetCurrentThreadPriority");
  EXPECT_TRUE(worker.Start(true, 15));
  EXPECT_TRUE(ran);
}

TEST_F(WorkerThreadTest, StopOfANeverStartedOneDoesNothing) {
  Worker worker(UntilStopEvent);
  sim.LogCalls(true);
  worker.Stop();
  EXPECT_TRUE(sim.Calls().empty());
  EXPECT_EQ(sim.Now(), 0u);
  EXPECT_FALSE(worker.StopRequested());
  EXPECT_FALSE(IsSignalled(worker.stopEvent));
}

TEST_F(WorkerThreadTest, StopEndsARunThatWaitsForTheEvent) {
  Worker worker(UntilStopEvent);
  ASSERT_TRUE(worker.Start(true, 0));
  sim.RunFor(99);
  sim.LogCalls(true);
  worker.Stop();
  EXPECT_EQ(sim.Now(), 100u);
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_EQ(sim.LivingThreads(), 0u);
  EXPECT_FALSE(WasCalled("TerminateThread"));
  EXPECT_TRUE(WasCalled("CloseHandle"));
}

TEST_F(WorkerThreadTest, RequestStopReturnsAtOnce) {
  Worker worker(UntilStopRequested);
  ASSERT_TRUE(worker.Start(true, 0));
  worker.RequestStop();
  EXPECT_EQ(sim.Now(), 1u);
  EXPECT_TRUE(worker.StopRequested());
  EXPECT_TRUE(IsSignalled(worker.stopEvent));
  EXPECT_TRUE(IsSignalled(worker.stopEvent));  // no wait resets it
  EXPECT_TRUE(worker.IsRunning());
  sim.RunFor(20);
  EXPECT_FALSE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, ARunThatIgnoresTheStopIsEndedAfterTheTimeout) {
  Worker worker(Forever);
  worker.stopTimeout = 50;
  ASSERT_TRUE(worker.Start(true, 0));
  sim.LogCalls(true);
  worker.Stop();
  EXPECT_EQ(sim.Now(), 51u);
  const auto forced = std::find_if(sim.Calls().begin(), sim.Calls().end(), [](const auto& call) {
    return call.starts_with("TerminateThread");
  });
  ASSERT_NE(forced, sim.Calls().end());
  EXPECT_TRUE(forced->ends_with(" 1000")) << "the exit code of a forced end";
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_EQ(sim.LivingThreads(), 0u);
  EXPECT_TRUE(worker.Start(true, 0)) << "it can be started again";
  EXPECT_TRUE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, TheTimeoutIsFifteenSecondsUnlessItIsSet) {
  Worker worker(Forever);
  ASSERT_TRUE(worker.Start(true, 0));
  worker.Stop();
  EXPECT_EQ(sim.Now(), 15001u);
}

TEST_F(WorkerThreadTest, ARunThatEndsJustInTimeIsNotEndedByForce) {
  Worker worker([](Worker& self) {
    UntilStopEvent(self);
    platform::clock().Sleep(49);
    return 0u;
  });
  worker.stopTimeout = 50;
  ASSERT_TRUE(worker.Start(true, 0));
  sim.LogCalls(true);
  worker.Stop();
  EXPECT_EQ(sim.Now(), 50u);
  EXPECT_FALSE(WasCalled("TerminateThread"));
}

TEST_F(WorkerThreadTest, AForcedEndLeavesLocksTakenAndRunsNoMore) {
  RecursiveLock lock;
  bool left = false;
  const platform::Handle exitEvent = platform::threads().CreateEventA(true, false);
  Worker worker([&](Worker& self) {
    lock.Acquire(1);
    return Forever(self);
  });
  worker.atExit = [&] { left = true; };
  worker.exitEvent = exitEvent;
  worker.stopTimeout = 5;
  ASSERT_TRUE(worker.Start(true, 0));
  worker.Stop();
  EXPECT_TRUE(lock.IsTaken());
  EXPECT_FALSE(lock.TryAcquire());
  EXPECT_FALSE(left);
  EXPECT_FALSE(IsSignalled(exitEvent));
  worker.exitEvent = platform::kInvalidHandle;
  platform::threads().CloseHandle(exitEvent);
}

TEST_F(WorkerThreadTest, TheStateCanBeAskedForWhileStopWaits) {
  Worker worker(Forever);
  worker.stopTimeout = 50;
  ASSERT_TRUE(worker.Start(true, 0));
  bool running = false;
  std::uint64_t asked = 0;
  Worker other([&](Worker&) {
    platform::clock().Sleep(20);
    running = worker.IsRunning();
    asked = sim.Now();
    return 0u;
  });
  ASSERT_TRUE(other.Start(false, 0));
  worker.Stop();
  EXPECT_TRUE(running);
  EXPECT_EQ(asked, 21u);
}

TEST_F(WorkerThreadTest, ARunThatEndsByItselfIsNoticed) {
  Worker worker([](Worker&) {
    platform::clock().Sleep(10);
    return 0u;
  });
  ASSERT_TRUE(worker.Start(true, 0));
  EXPECT_TRUE(worker.IsRunning());
  sim.RunFor(20);
  sim.LogCalls(true);
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_TRUE(WasCalled("CloseHandle"));
  sim.ClearCalls();
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_TRUE(sim.Calls().empty());  // the handle is gone
}

TEST_F(WorkerThreadTest, TheSecondRunStartsWithoutTheStopOfTheFirst) {
  std::vector<bool> requested;
  Worker worker([&](Worker& self) {
    requested.push_back(self.StopRequested() || IsSignalled(self.stopEvent));
    return UntilStopEvent(self);
  });
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(worker.Start(true, 0));
    EXPECT_TRUE(worker.IsRunning());
    worker.Stop();
  }
  EXPECT_EQ(requested, (std::vector<bool>{false, false, false}));
}

TEST_F(WorkerThreadTest, OnExitFollowsRunOnTheThread) {
  std::string order;
  std::int32_t runId = 0;
  std::int32_t exitId = 0;
  const platform::Handle exitEvent = platform::threads().CreateEventA(true, true);
  Worker worker([&](Worker&) {
    order += IsSignalled(exitEvent) ? "still signalled, " : "run, ";
    runId = platform::threads().GetCurrentThreadId();
    return 0u;
  });
  worker.atExit = [&] {
    order += IsSignalled(exitEvent) ? "signalled early" : "exit";
    exitId = platform::threads().GetCurrentThreadId();
  };
  worker.exitEvent = exitEvent;
  ASSERT_TRUE(worker.Start(false, 0));
  EXPECT_FALSE(IsSignalled(exitEvent));  // reset by the start
  sim.RunFor(0);
  EXPECT_EQ(order, "run, exit");
  EXPECT_EQ(runId, exitId);
  EXPECT_TRUE(IsSignalled(exitEvent));
  worker.Stop();
  worker.exitEvent = platform::kInvalidHandle;
  platform::threads().CloseHandle(exitEvent);
}

// A start that waits sees a thread whose Run is over already, for as long as OnExit takes.
TEST_F(WorkerThreadTest, OnExitStillCountsAsRunning) {
  Worker worker([](Worker&) { return 0u; });
  worker.atExit = [] { platform::clock().Sleep(100); };
  ASSERT_TRUE(worker.Start(true, 0));
  EXPECT_EQ(sim.Now(), 1u);
  EXPECT_TRUE(worker.IsRunning());
  sim.RunFor(100);
  EXPECT_FALSE(worker.IsRunning());
}

// The code of a thread that still runs is 259, and so such a result looks like one.
TEST_F(WorkerThreadTest, AResultOfStillActiveLooksLikeARunningThread) {
  Worker worker([](Worker&) { return platform::STILL_ACTIVE; });
  ASSERT_TRUE(worker.Start(false, 0));
  sim.RunFor(10);
  EXPECT_EQ(sim.LivingThreads(), 0u);
  EXPECT_TRUE(worker.IsRunning());
  EXPECT_FALSE(worker.Start(false, 0));
  worker.Stop();
  EXPECT_EQ(sim.Now(), 10u);
  EXPECT_FALSE(worker.IsRunning());
}

TEST_F(WorkerThreadTest, DestructionStopsTheThreadAndClosesTheEvent) {
  auto worker = std::make_unique<Worker>(UntilStopEvent);
  const platform::Handle stopEvent = worker->stopEvent;
  ASSERT_TRUE(worker->Start(true, 0));
  worker.reset();
  EXPECT_EQ(sim.LivingThreads(), 0u);
  EXPECT_FALSE(platform::threads().SetEvent(stopEvent));
}

// One whose Run uses no members needs no Stop of its own.
class PlainWorker : public WorkerThread {
 public:
  PlainWorker() : WorkerThread("plain") {}

 protected:
  std::uint32_t Run() override {
    platform::threads().WaitForSingleObject(stopEvent, platform::WAIT_FOREVER);
    return 0;
  }
};

TEST_F(WorkerThreadTest, DestructionStopsTheThreadByItself) {
  {
    PlainWorker worker;
    ASSERT_TRUE(worker.Start(true, 0));
    EXPECT_EQ(sim.LivingThreads(), 1u);
  }
  EXPECT_EQ(sim.LivingThreads(), 0u);
}

TEST_F(WorkerThreadTest, WithoutAnEventTheRequestIsStillSeen) {
  sim.FailNext("CreateEventA manual");
  Worker worker(UntilStopRequested);
  EXPECT_EQ(worker.stopEvent, platform::kInvalidHandle);
  ASSERT_TRUE(worker.Start(true, 0));
  ASSERT_EQ(sim.Now(), 1u);
  sim.LogCalls(true);
  worker.Stop();
  EXPECT_EQ(sim.Now(), 10u);  // it began at 0 and looks every 10 ms
  EXPECT_FALSE(worker.IsRunning());
  EXPECT_FALSE(WasCalled("TerminateThread"));
}

}  // namespace
}  // namespace kelvaro
