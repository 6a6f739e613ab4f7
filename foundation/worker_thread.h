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
  // only once the thread has begun (looked at every millisecond). `priority`: -15 to 15, or
  // kPriorityOfCaller; the thread gives it to itself, and goes on where the system refuses.
  bool Start(bool waitUntilRunning, std::int32_t priority);

  // Asks Run to end; returns at once.
  void RequestStop();

  // Also gives up the handle of a thread that has ended by itself. A Run with the result
  // STILL_ACTIVE (259) can't be told from one that goes on.
  bool IsRunning();

  // Asks Run to end and waits up to stopTimeout ms; a thread that hasn't ended by then is ended by
  // force, and whatever lock it holds stays held. Nothing when the thread isn't running.
  void Stop();

  std::uint32_t stopTimeout = 15000;  // ms
  // Optional and the caller's own: reset by Start, signalled when the thread ends by itself.
  platform::Handle exitEvent = platform::kInvalidHandle;

 protected:
  // On the thread; the result is its exit code.
  virtual std::uint32_t Run() = 0;

  // On the thread, after Run.
  virtual void OnExit() {}

  bool StopRequested();

  platform::Handle stopEvent = platform::kInvalidHandle;  // manual reset

 private:
  static std::uint32_t Entry(void* self);
  bool HasBegun();
  void Forget() KELVARO_NEEDS(stateLock);  // closes the handle

  RecursiveLock stateLock;
  platform::Handle threadHandle KELVARO_GUARDED_BY(stateLock) = platform::kInvalidHandle;
  std::int32_t threadId KELVARO_GUARDED_BY(stateLock) = 0;
  std::uint32_t exitCode KELVARO_GUARDED_BY(stateLock) = 0;
  bool stopRequested KELVARO_GUARDED_BY(stateLock) = false;
  bool isRunning KELVARO_GUARDED_BY(stateLock) = false;
  std::int32_t priority KELVARO_GUARDED_BY(stateLock) = 0;
  const char* const name;
};

}  // namespace kelvaro
