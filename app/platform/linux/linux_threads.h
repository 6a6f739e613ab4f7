// Threads and events over POSIX threads. A handle is a number that is never given out twice, so a
// stale one is refused. All waiting goes through one mutex; no operation but CreateThread,
// CreateEventA and CloseHandle allocates. Any thread.
#pragma once

#include <memory>

#include "app/platform/threads.h"

namespace platform {

class LinuxThreads : public Threads {
 public:
  LinuxThreads();
  // Threads that still run go on, as long as they don't call through this object.
  ~LinuxThreads() override;
  LinuxThreads(const LinuxThreads&) = delete;
  LinuxThreads& operator=(const LinuxThreads&) = delete;

  // The kernel's thread id.
  std::int32_t GetCurrentThreadId() override;
  Handle CreateThread(ThreadEntry entry, void* parameter, const char* name,
                      std::int32_t* threadId) override;
  bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) override;
  // See cut_off.h. False for a thread that has ended already: it keeps its exit code.
  bool TerminateThread(Handle thread, std::uint32_t exitCode) override;
  // See thread_priority.h.
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

 private:
  struct Object;
  struct Waiter;
  class Held;
  struct Start;
  struct State;

  static void* RunThread(void* start);

  // Shared with the threads, which may outlive this object.
  std::shared_ptr<State> state;
};

}  // namespace platform
