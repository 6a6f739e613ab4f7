#include "app/platform/windows/windows_threads.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "app/platform/windows/held_wakes.h"
#include "app/platform/windows/win32.h"

namespace platform {
namespace {

struct Start {
  ThreadEntry entry;
  void* parameter;
};

DWORD WINAPI RunThread(void* raw) {
  const Start start = *static_cast<Start*>(raw);
  delete static_cast<Start*>(raw);
  return start.entry(start.parameter);
}

// For debuggers. The operation came with a version of Windows 10.
void NameThread(HANDLE thread, std::string_view name) {
  using SetDescription = ::HRESULT(WINAPI*)(HANDLE thread, const wchar_t* description);
  static const auto set =
      FunctionOf<SetDescription>(GetModuleHandleA("Kernel32.dll"), "SetThreadDescription");
  // ASCII, as all names of threads are.
  if (set) set(thread, std::wstring(name.begin(), name.end()).c_str());
}

// The number of the invalid handle stands for this process in operations that take a process, so
// that a wait for it would never end.
bool IsHandle(Handle handle) { return handle != kInvalidHandle; }

}  // namespace

std::int32_t WindowsThreads::GetCurrentThreadId() {
  return static_cast<std::int32_t>(::GetCurrentThreadId());
}

Handle WindowsThreads::CreateThread(ThreadEntry entry, void* parameter, const char* name,
                                    std::int32_t* threadId) {
  if (!entry) return kInvalidHandle;
  auto start = std::make_unique<Start>(Start{entry, parameter});
  DWORD id = 0;
  const HANDLE thread = ::CreateThread(nullptr, 0, RunThread, start.get(), CREATE_SUSPENDED, &id);
  if (!thread) return kInvalidHandle;
  (void)start.release();  // the thread's now
  if (name) NameThread(thread, name);
  ResumeThread(thread);
  if (threadId) *threadId = static_cast<std::int32_t>(id);
  return SeamHandle(thread);
}

bool WindowsThreads::GetExitCodeThread(Handle thread, std::uint32_t* exitCode) {
  DWORD code = 0;
  if (!::GetExitCodeThread(SystemHandle(thread), &code)) return false;
  *exitCode = code;
  return true;
}

bool WindowsThreads::TerminateThread(Handle thread, std::uint32_t exitCode) {
  // One that has ended keeps its exit code.
  return WaitForSingleObject(thread, 0) == WAIT_TIMEOUT &&
         ::TerminateThread(SystemHandle(thread), exitCode);
}

bool WindowsThreads::SetCurrentThreadPriority(std::int32_t priority) {
  return ::SetThreadPriority(::GetCurrentThread(), priority) != FALSE;
}

std::int32_t WindowsThreads::GetCurrentThreadPriority() {
  return ::GetThreadPriority(::GetCurrentThread());
}

bool WindowsThreads::SetPriorityClass(std::uint32_t priorityClass) {
  return ::SetPriorityClass(::GetCurrentProcess(), priorityClass) != FALSE;
}

Handle WindowsThreads::CreateEventA(bool manualReset, bool initialState) {
  return SeamHandle(::CreateEventA(nullptr, manualReset, initialState, nullptr));
}

bool WindowsThreads::SetEvent(Handle event) {
  return HeldWakes::Keep(SystemHandle(event)) || ::SetEvent(SystemHandle(event));
}

bool WindowsThreads::ResetEvent(Handle event) {
  HeldWakes::LetOut();
  return ::ResetEvent(SystemHandle(event)) != FALSE;
}

std::uint32_t WindowsThreads::WaitForSingleObject(Handle handle, std::uint32_t timeoutMs) {
  if (!IsHandle(handle)) return WAIT_FAILED;
  HeldWakes::LetOut();
  return ::WaitForSingleObject(SystemHandle(handle), timeoutMs);
}

std::uint32_t WindowsThreads::WaitForMultipleObjects(std::uint32_t count, const Handle* handles,
                                                     std::uint32_t timeoutMs) {
  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || !handles) return WAIT_FAILED;
  if (!std::all_of(handles, handles + count, IsHandle)) return WAIT_FAILED;
  HANDLE waitedFor[MAXIMUM_WAIT_OBJECTS];
  std::transform(handles, handles + count, waitedFor, SystemHandle);
  HeldWakes::LetOut();
  return ::WaitForMultipleObjects(count, waitedFor, FALSE, timeoutMs);
}

bool WindowsThreads::CloseHandle(Handle handle) {
  HeldWakes::LetOut();
  return IsHandle(handle) && ::CloseHandle(SystemHandle(handle));
}

}  // namespace platform
