#include "app/platform/windows/stop_requests.h"

#include <algorithm>

#include "app/platform/windows/win32.h"

namespace platform {
namespace {

constexpr UINT kEndedByCtrlC = 0xC000013Au;  // the published exit code

// For the life of the program: the system may call at any time.
HANDLE Asked() {
  static const HANDLE event = ::CreateEventA(nullptr, TRUE, FALSE, nullptr);
  return event;
}

bool HasCome() { return ::WaitForSingleObject(Asked(), 0) == WAIT_OBJECT_0; }

// On a thread of the system's.
BOOL WINAPI Take(DWORD what) {
  if (HasCome()) return FALSE;
  ::SetEvent(Asked());
  // The program ends with the return where its console goes; its main thread needs a moment.
  if (what != CTRL_C_EVENT && what != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

StopRequests::StopRequests() {
  ::ResetEvent(Asked());
  SetConsoleCtrlHandler(Take, TRUE);
}

StopRequests::~StopRequests() { SetConsoleCtrlHandler(Take, FALSE); }

bool StopRequests::Wait(std::optional<std::uint64_t> ms) {
  constexpr std::uint64_t kLongest = INFINITE - 1;
  const DWORD wait = ms ? static_cast<DWORD>(std::min(*ms, kLongest)) : INFINITE;
  return ::WaitForSingleObject(Asked(), wait) == WAIT_OBJECT_0;
}

void StopRequests::EndAsAsked() const {
  if (HasCome()) ExitProcess(kEndedByCtrlC);
}

void StopRequests::Ask() { ::SetEvent(Asked()); }

}  // namespace platform
