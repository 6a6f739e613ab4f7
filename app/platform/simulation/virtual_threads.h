// Threads, events and the clock of the simulation: the seam's meanings over the Scheduler.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "app/platform/clock.h"
#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/threads.h"

namespace platform::simulation {

class VirtualClock final : public Clock {
 public:
  VirtualClock(Scheduler& scheduler, Journal& journal) : scheduler(scheduler), journal(journal) {}

  void Sleep(std::uint32_t ms) override {
    journal.Enter("Sleep", ms);
    scheduler.SleepUntil(scheduler.Now() + ms);
  }
  std::uint32_t GetTickCount() override {
    return static_cast<std::uint32_t>(scheduler.Now()) + offset;
  }

  std::uint32_t offset = 0;

 private:
  Scheduler& scheduler;
  Journal& journal;
};

class VirtualThreads final : public Threads {
 public:
  VirtualThreads(Scheduler& scheduler, Journal& journal);

  std::int32_t GetCurrentThreadId() override;
  Handle CreateThread(ThreadEntry entry, void* parameter, const char* name,
                      std::int32_t* threadId) override;
  bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) override;
  bool TerminateThread(Handle thread, std::uint32_t exitCode) override;
  bool SetCurrentThreadPriority(std::int32_t priority) override;
  std::int32_t GetCurrentThreadPriority() override;
  bool SetPriorityClass(std::uint32_t priorityClass) override;
  Handle CreateEventA(bool manualReset, bool initialState) override;
  bool SetEvent(Handle event) override;
  bool ResetEvent(Handle event) override;
  std::uint32_t WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) override;
  std::uint32_t WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                       std::uint32_t timeoutMs) override;
  bool CloseHandle(Handle handle) override;

  std::uint32_t Living() const;
  std::uint32_t OpenHandles() const;

 private:
  std::shared_ptr<Waitable> Find(Handle handle) const;
  std::shared_ptr<VirtualThread> FindThread(Handle handle) const;
  std::shared_ptr<Event> FindEvent(Handle handle) const;
  Handle Keep(std::shared_ptr<Waitable> object);
  std::uint32_t Wait(std::uint32_t count, const Handle* handles, std::uint32_t timeoutMs);

  Scheduler& scheduler;
  Journal& journal;
  // A handle is a place in here plus 1; none is used twice, so that a stale one is found out.
  std::vector<std::shared_ptr<Waitable>> handles;
  std::vector<std::shared_ptr<VirtualThread>> made;  // living ones, and a few that have ended
};

}  // namespace platform::simulation
