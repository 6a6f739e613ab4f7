// The system's multimedia timers. Each period's end signals an event, for which a thread of the
// timer's own waits: that one makes the calls, skips what passes while a call runs, and can wait
// for other things. While a timer sleeps the system has none in its place. Any thread.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "app/platform/timers.h"

namespace platform {

class WindowsTimers : public Timers {
 public:
  WindowsTimers();
  // Ends all timers and waits for the calls under way. Not from a timer's callback.
  ~WindowsTimers() override;
  WindowsTimers(const WindowsTimers&) = delete;
  WindowsTimers& operator=(const WindowsTimers&) = delete;

  std::uint32_t timeGetDevCaps(TIMECAPS* caps) override;
  std::uint32_t timeBeginPeriod(std::uint32_t periodMs) override;
  std::uint32_t timeEndPeriod(std::uint32_t periodMs) override;
  // 0 for a delay that the system has no timer for, no callback, other flags than TIME_PERIODIC, or
  // when there can be no thread.
  std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                             TimerCallback callback, void* user, std::uint32_t flags) override;
  // `news` is an event.
  void SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) override;
  void WakeTimer(std::uint32_t timerId) override;
  // A failure, at once, for an id that is not of a running timer.
  std::uint32_t timeKillEvent(std::uint32_t timerId) override;

 private:
  class Timer;
  std::shared_ptr<Timer> Find(std::uint32_t timerId);

  std::mutex mutex;
  std::map<std::uint32_t, std::shared_ptr<Timer>> running;  // guarded by mutex
  std::uint32_t lastId = 0;                                 // guarded by mutex
};

}  // namespace platform
