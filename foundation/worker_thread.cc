#include "foundation/worker_thread.h"

#include "app/platform/clock.h"

namespace kelvaro {
namespace {

// What a thread that was ended by force leaves as its exit code.
constexpr std::uint32_t kExitCodeOfForce = 1000;

}  // namespace

WorkerThread::WorkerThread(const char* name)
    : stopEvent(platform::threads().CreateEventA(true, false)), name(name) {}

WorkerThread::~WorkerThread() {
  Stop();
  if (stopEvent != platform::kInvalidHandle) platform::threads().CloseHandle(stopEvent);
}

bool WorkerThread::Start(bool waitUntilRunning, std::int32_t wanted) {
  if (IsRunning()) return false;
  if (wanted == kPriorityOfCaller) {
    wanted = platform::threads().GetCurrentThreadPriority();
    if (wanted == platform::THREAD_PRIORITY_ERROR_RETURN) wanted = 0;
  }
  {
    LockGuard guard(stateLock);
    priority = wanted;
    exitCode = 0;
    stopRequested = false;
    isRunning = false;
    platform::threads().ResetEvent(stopEvent);
    if (exitEvent != platform::kInvalidHandle) platform::threads().ResetEvent(exitEvent);
  }

  std::int32_t id = 0;
  const platform::Handle handle = platform::threads().CreateThread(Entry, this, name, &id);
  if (handle == platform::kInvalidHandle) return false;
  {
    LockGuard guard(stateLock);
    threadHandle = handle;
    threadId = id;
  }

  while (waitUntilRunning && !HasBegun()) {
    // A short Run may be over before anyone looked.
    if (!IsRunning()) break;
    platform::clock().Sleep(1);
  }
  return true;
}

void WorkerThread::RequestStop() {
  {
    LockGuard guard(stateLock);
    stopRequested = true;
  }
  platform::threads().SetEvent(stopEvent);
}

bool WorkerThread::IsRunning() {
  LockGuard guard(stateLock);
  if (threadHandle == platform::kInvalidHandle) return false;
  std::uint32_t code = 0;
  if (platform::threads().GetExitCodeThread(threadHandle, &code) &&
      code == platform::STILL_ACTIVE) {
    return true;
  }
  Forget();
  return false;
}

void WorkerThread::Stop() {
  if (!IsRunning()) return;
  RequestStop();
  platform::Handle handle;
  std::uint32_t timeout;
  {
    LockGuard guard(stateLock);
    handle = threadHandle;
    timeout = stopTimeout;
  }
  if (platform::threads().WaitForSingleObject(handle, timeout) == platform::WAIT_TIMEOUT) {
    platform::threads().TerminateThread(handle, kExitCodeOfForce);
  }
  LockGuard guard(stateLock);
  Forget();
}

bool WorkerThread::StopRequested() {
  LockGuard guard(stateLock);
  return stopRequested;
}

bool WorkerThread::HasBegun() {
  LockGuard guard(stateLock);
  return isRunning;
}

void WorkerThread::Forget() {
  platform::threads().CloseHandle(threadHandle);
  threadHandle = platform::kInvalidHandle;
  isRunning = false;
}

std::uint32_t WorkerThread::Entry(void* self) {
  WorkerThread* const worker = static_cast<WorkerThread*>(self);
  std::int32_t own;
  {
    LockGuard guard(worker->stateLock);
    worker->isRunning = true;
    own = worker->priority;
  }
  platform::threads().SetCurrentThreadPriority(own);
  const std::uint32_t code = worker->Run();
  // A thread that was cut off during Run, whose worker may be gone, gets no further than this call.
  platform::threads().GetCurrentThreadId();
  {
    LockGuard guard(worker->stateLock);
    worker->exitCode = code;
  }
  worker->OnExit();
  LockGuard guard(worker->stateLock);
  worker->isRunning = false;
  if (worker->exitEvent != platform::kInvalidHandle)
    platform::threads().SetEvent(worker->exitEvent);
  return code;
}

}  // namespace kelvaro
