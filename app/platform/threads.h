// Threads and events, known by handles. The meanings are those of the published Win32 operations
// of the same names.
#pragma once

#include <cstdint>

namespace platform {

using Handle = std::intptr_t;
constexpr Handle kInvalidHandle = -1;

constexpr std::uint32_t WAIT_OBJECT_0 = 0;
constexpr std::uint32_t WAIT_TIMEOUT = 258;
constexpr std::uint32_t WAIT_FAILED = 0xFFFFFFFFu;
constexpr std::uint32_t WAIT_FOREVER = 0xFFFFFFFFu;  // the published INFINITE

constexpr std::uint32_t STILL_ACTIVE = 259;

constexpr std::uint32_t HIGH_PRIORITY_CLASS = 0x80;

constexpr std::int32_t THREAD_PRIORITY_NORMAL = 0;
constexpr std::int32_t THREAD_PRIORITY_TIME_CRITICAL = 15;
constexpr std::int32_t THREAD_PRIORITY_ERROR_RETURN = 0x7FFFFFFF;

using ThreadEntry = std::uint32_t (*)(void* parameter);

class Threads {
 public:
  virtual ~Threads() = default;

  // Above 0, the same for the whole life of the thread, no two living threads alike.
  virtual std::int32_t GetCurrentThreadId() = 0;

  // Runs entry(parameter) on a new thread, whose exit code is entry's result. `name` is for
  // debuggers and for schedulers that rank threads; it must outlive the call only.
  // kInvalidHandle when the thread can't be made. `threadId` may be null.
  virtual Handle CreateThread(ThreadEntry entry, void* parameter, const char* name,
                              std::int32_t* threadId) = 0;

  // STILL_ACTIVE (259) in *exitCode while the thread runs. False for a handle that is no thread.
  virtual bool GetExitCodeThread(Handle thread, std::uint32_t* exitCode) = 0;

  // Ends the thread by force; its exit code becomes `exitCode`, and whatever it holds stays held.
  // Where a thread can't be stopped in its tracks, it is cut off instead: it counts as ended, and
  // never returns from where it next reaches for the platform.
  virtual bool TerminateThread(Handle thread, std::uint32_t exitCode) = 0;

  // Priorities run from -15 to 15. Where the system refuses, the thread goes on as it is; the
  // result then is false. The thread is the calling one.
  virtual bool SetCurrentThreadPriority(std::int32_t priority) = 0;

  // The value last set for the calling thread, 0 if none was; THREAD_PRIORITY_ERROR_RETURN when
  // it can't be told.
  virtual std::int32_t GetCurrentThreadPriority() = 0;

  // Of the whole process, which for a game's helper is HIGH_PRIORITY_CLASS. False, with the process
  // as it was, where the system refuses.
  virtual bool SetPriorityClass(std::uint32_t priorityClass) = 0;

  // An event. kInvalidHandle when there can be none.
  virtual Handle CreateEventA(bool manualReset, bool initialState) = 0;
  virtual bool SetEvent(Handle event) = 0;
  virtual bool ResetEvent(Handle event) = 0;

  // Waits for an event to be signalled (an auto-reset one is reset by the wait that it ends) or
  // for a thread to end. WAIT_OBJECT_0, WAIT_TIMEOUT or WAIT_FAILED.
  virtual std::uint32_t WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) = 0;

  // Waits for any of `count` events (1 to 64). WAIT_OBJECT_0 plus the lowest signalled index,
  // WAIT_TIMEOUT or WAIT_FAILED.
  virtual std::uint32_t WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                               std::uint32_t timeoutMs) = 0;

  // Gives up a thread or event handle. A thread runs on without its handle.
  virtual bool CloseHandle(Handle handle) = 0;
};

// Of the installed platform; see platform.h.
Threads& threads();

}  // namespace platform
