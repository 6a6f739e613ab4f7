#include "app/platform/windows/windows_timers.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "app/platform/timer_grid.h"
#include "app/platform/windows/held_wakes.h"
#include "app/platform/windows/owned_handle.h"
#include "app/platform/windows/win32.h"

#include <mmsystem.h>

namespace platform {
namespace {

constexpr std::int64_t kMicroseconds = 1000;  // in a millisecond

// Microseconds since some start.
std::int64_t Now() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER count;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&count);
  const std::int64_t perSecond = frequency.QuadPart;
  return count.QuadPart / perSecond * 1'000'000 +
         count.QuadPart % perSecond * 1'000'000 / perSecond;
}

OwnedHandle NewEvent() { return OwnedHandle(CreateEventA(nullptr, FALSE, FALSE, nullptr)); }

}  // namespace

// Owned by the group, and by its thread for as long as that runs.
class WindowsTimers::Timer : public std::enable_shared_from_this<Timer> {
 public:
  Timer(std::uint32_t id, std::uint32_t periodMs, std::uint32_t resolutionMs,
        TimerCallback callback, void* user)
      : id(id), periodMs(periodMs), resolutionMs(resolutionMs), callback(callback), user(user) {}

  bool Start() {
    if (!tick || !wakeUp || !BeginPeriods()) return false;
    start = last = Now();
    auto self = std::make_unique<std::shared_ptr<Timer>>(shared_from_this());
    thread = OwnedHandle(::CreateThread(nullptr, 0, RunThread, self.get(), 0, &threadId));
    if (!thread) {
      EndPeriods();
      return false;
    }
    (void)self.release();  // the thread's now
    return true;
  }

  // Waits for the end of a call that is under way, unless it comes from that call.
  void Kill() {
    killed = true;
    ::SetEvent(wakeUp.Get());
    if (::GetCurrentThreadId() != threadId) ::WaitForSingleObject(thread.Get(), INFINITE);
  }

  void Sleep(Handle news, bool atOnce) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!woken) rest = Rest{SystemHandle(news), atOnce};
  }

  void Wake() {
    const std::lock_guard<std::mutex> lock(mutex);
    woken = true;
    rest.reset();
    if (isResting) ::SetEvent(wakeUp.Get());
  }

 private:
  struct Rest {
    HANDLE news;
    bool atOnce;
  };

  static DWORD WINAPI RunThread(void* raw) {
    const std::unique_ptr<std::shared_ptr<Timer>> self(static_cast<std::shared_ptr<Timer>*>(raw));
    (*self)->Run();
    return 0;
  }

  std::int64_t Period() const { return periodMs * kMicroseconds; }

  void Run() {
    // As the system's own thread for such timers has it.
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_TIME_CRITICAL);
    while (WaitForTick()) {
      last = Now();
      {
        const std::lock_guard<std::mutex> lock(mutex);
        woken = false;
      }
      {
        // The threads that the callback wakes want what the callback still holds.
        const HeldWakes untilItEnds;
        callback(id, user);
      }
      // A period that ended meanwhile is left out.
      ::ResetEvent(tick.Get());
      if (const auto until = TakeRest()) Resting(*until);
    }
    EndPeriods();
  }

  // False once it was killed.
  bool WaitForTick() {
    const HANDLE either[] = {wakeUp.Get(), tick.Get()};
    while (!killed)
      if (::WaitForMultipleObjects(2, either, FALSE, INFINITE) != WAIT_OBJECT_0) return !killed;
    return false;
  }

  std::optional<Rest> TakeRest() {
    const std::lock_guard<std::mutex> lock(mutex);
    isResting = rest.has_value() && !killed;
    return isResting ? std::exchange(rest, std::nullopt) : std::nullopt;
  }

  // Until it is over, and then until the next call's time, which the event of a tick tells.
  void Resting(const Rest& until) {
    EndPeriods();
    ::ResetEvent(tick.Get());
    const HANDLE either[] = {wakeUp.Get(), until.news};
    const bool isByNews = ::WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0 + 1;
    {
      const std::lock_guard<std::mutex> lock(mutex);
      isResting = false;
    }
    if (killed) return;
    const std::int64_t now = Now();
    std::int64_t next = 0;
    if (isByNews && until.atOnce) {
      start = next = std::max(now, last + Period());
    } else {
      next = NextGridPoint(start, now, Period());
      // The call before came a little late or early.
      if (next - last < Period() / 2) next += Period();
    }
    WaitUntil(next);
    if (killed) return;
    // The tick that the loop waits for, and those behind it.
    BeginPeriods();
    ::SetEvent(tick.Get());
  }

  void WaitUntil(std::int64_t moment) {
    const std::int64_t left = moment - Now();
    if (left <= 0) return;
    const auto ms = static_cast<UINT>((left + kMicroseconds - 1) / kMicroseconds);
    const MMRESULT once = SystemTimer(ms, TIME_ONESHOT);
    if (once) WaitForTick();
    ::timeKillEvent(once);
  }

  bool BeginPeriods() {
    periods = SystemTimer(periodMs, TIME_PERIODIC);
    return periods != 0;
  }
  void EndPeriods() {
    if (periods) ::timeKillEvent(std::exchange(periods, 0));
  }

  MMRESULT SystemTimer(UINT ms, UINT flags) const {
    return ::timeSetEvent(ms, resolutionMs, reinterpret_cast<LPTIMECALLBACK>(tick.Get()), 0,
                          flags | TIME_CALLBACK_EVENT_SET);
  }

  const std::uint32_t id;
  const std::uint32_t periodMs;
  const std::uint32_t resolutionMs;
  const TimerCallback callback;
  void* const user;
  const OwnedHandle tick = NewEvent();
  const OwnedHandle wakeUp = NewEvent();  // it is killed, or a rest is over
  OwnedHandle thread;
  DWORD threadId = 0;
  std::atomic<bool> killed{false};

  // Of its thread alone.
  MMRESULT periods = 0;
  std::int64_t start = 0;  // a point of the grid
  std::int64_t last = 0;   // when the last call came

  std::mutex mutex;
  bool woken = false;        // guarded by mutex: since the last call began
  std::optional<Rest> rest;  // guarded by mutex
  bool isResting = false;    // guarded by mutex
};

WindowsTimers::WindowsTimers() = default;

WindowsTimers::~WindowsTimers() {
  std::map<std::uint32_t, std::shared_ptr<Timer>> all;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    all.swap(running);
  }
  for (const auto& [id, timer] : all) timer->Kill();
}

std::uint32_t WindowsTimers::timeGetDevCaps(TIMECAPS* caps) {
  ::TIMECAPS system;
  const MMRESULT result = caps ? ::timeGetDevCaps(&system, sizeof system) : TIMERR_NOCANDO;
  if (result == TIMERR_NOERROR) *caps = {system.wPeriodMin, system.wPeriodMax};
  return result;
}

std::uint32_t WindowsTimers::timeBeginPeriod(std::uint32_t periodMs) {
  return ::timeBeginPeriod(periodMs);
}

std::uint32_t WindowsTimers::timeEndPeriod(std::uint32_t periodMs) {
  return ::timeEndPeriod(periodMs);
}

std::uint32_t WindowsTimers::timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                                          TimerCallback callback, void* user, std::uint32_t flags) {
  TIMECAPS caps;
  if (!callback || flags != TIME_PERIODIC || timeGetDevCaps(&caps) != TIMERR_NOERROR ||
      delayMs < caps.wPeriodMin || delayMs > caps.wPeriodMax)
    return 0;
  const std::lock_guard<std::mutex> lock(mutex);
  do {
    ++lastId;
  } while (lastId == 0 || running.count(lastId) != 0);
  const auto timer = std::make_shared<Timer>(lastId, delayMs, resolutionMs, callback, user);
  if (!timer->Start()) return 0;
  running.emplace(lastId, timer);
  return lastId;
}

std::shared_ptr<WindowsTimers::Timer> WindowsTimers::Find(std::uint32_t timerId) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = running.find(timerId);
  return found == running.end() ? nullptr : found->second;
}

void WindowsTimers::SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) {
  if (const auto timer = Find(timerId)) timer->Sleep(news, atOnce);
}

void WindowsTimers::WakeTimer(std::uint32_t timerId) {
  if (const auto timer = Find(timerId)) timer->Wake();
}

std::uint32_t WindowsTimers::timeKillEvent(std::uint32_t timerId) {
  const auto timer = Find(timerId);
  if (!timer) return MMSYSERR_INVALPARAM;
  timer->Kill();
  const std::lock_guard<std::mutex> lock(mutex);
  running.erase(timerId);
  return TIMERR_NOERROR;
}

}  // namespace platform
