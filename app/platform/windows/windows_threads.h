// The system's threads and events; a handle is the system's own. Any thread.
#pragma once

#include "app/platform/threads.h"

namespace platform {

class WindowsThreads : public Threads {
 public:
  std::int32_t GetCurrentThreadId() override;
  Handle CreateThread(ThreadEntry entry, void* parameter, const char* name,
                      std::int32_t* threadId) override;
  bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) override;
  // In its tracks: not even its stack is given back to the C++ library.
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
};

}  // namespace platform
