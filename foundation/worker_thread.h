// A thread with a stop request. A derived class gives Run, which ends by waiting on stopEvent or
// by looking at StopRequested in its loop.
#pragma once

#include <cstdint>

#include "app/platform/threads.h"
#include "foundation/recursive_lock.h"

namespace kelvaro {

class WorkerThread {
 public:
  // Start's priority value for "as the calling thread".
  static constexpr std::int32_t kPriorityOfCaller = -10000;

  // `name` is what a debugger shows and what a scheduler ranks by; it must live as long as this.
  explicit WorkerThread(const char* name);

  // Stops the thread. A derived class whose members its Run uses calls Stop in its own destructor.
  virtual ~WorkerThread();
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

  // False when the thread is running already or can't be made. With waitUntilRunning it returns
  // only once the thread has begun. `priority`: -15 to 15, or kPriorityOfCaller.
  bool Start(bool waitUntilRunning, std::int32_t priority);

  // Asks Run to end; returns at once.
  void RequestStop();

  bool IsRunning();

  // Asks Run to end and waits up to stopTimeout ms; a thread that hasn't ended by then is ended by
  // force, and whatever lock it holds stays held. Nothing when the thread isn't running.
  void Stop();

  std::uint32_t stopTimeout = 15000;                      // ms
  platform::Handle exitEvent = platform::kInvalidHandle;  // optional, signalled at the end

 protected:
  // On the thread; the result is its exit code.
  virtual std::uint32_t Run() = 0;

  // On the thread, after Run.
  virtual void OnExit() {}

  bool StopRequested();

  platform::Handle stopEvent = platform::kInvalidHandle;  // manual reset

 private:
  static std::uint32_t Entry(void* self);

  RecursiveLock stateLock;
  platform::Handle threadHandle = platform::kInvalidHandle;
  std::int32_t threadId = 0;
  std::uint32_t exitCode = 0;  // guarded by stateLock, as are the next three
  bool stopRequested = false;
  bool isRunning = false;
  std::int32_t priority = 0;
  const char* const name;
};

}  // namespace kelvaro
