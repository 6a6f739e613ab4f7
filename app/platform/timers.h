// Multimedia timers: a periodic call on a thread of the platform's own, which may sleep while there
// is nothing to do.
#pragma once

#include <cstdint>

#include "app/platform/threads.h"

namespace platform {

constexpr std::uint32_t TIMERR_NOERROR = 0;
constexpr std::uint32_t TIME_PERIODIC = 1;

// Limits of a period, in milliseconds.
struct TIMECAPS {
  std::uint32_t wPeriodMin = 0;
  std::uint32_t wPeriodMax = 0;
};

using TimerCallback = void (*)(std::uint32_t timerId, void* user);

class Timers {
 public:
  virtual ~Timers() = default;

  // TIMERR_NOERROR on success; any other value leaves *caps alone.
  virtual std::uint32_t timeGetDevCaps(TIMECAPS* caps) = 0;

  // Ask for and give back a timer grain of `periodMs`. In pairs.
  virtual std::uint32_t timeBeginPeriod(std::uint32_t periodMs) = 0;
  virtual std::uint32_t timeEndPeriod(std::uint32_t periodMs) = 0;

  // Calls callback(id, user) every `delayMs` milliseconds, first after one delay, on one thread
  // and never twice at once. Periods that pass while a call still runs are skipped and not made
  // up for. `flags` is TIME_PERIODIC. The timer's id, or 0 when there can be none.
  virtual std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                                     TimerCallback callback, void* user, std::uint32_t flags) = 0;

  // For the callback of the timer, during its call: until there is news, which a device's
  // WaitForNews gives, or WakeTimer is called, there is no further call. Then they go on where they
  // would have come without the sleep, the next at the next multiple of the period. With `atOnce`
  // news brings a call at once, though a full period after the last at the earliest, and the
  // period's multiples count from that call on. Without effect once WakeTimer has been called
  // during the same call.
  virtual void SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) = 0;

  // What the callback went by may have changed. Nothing for a timer that isn't there. Any thread.
  virtual void WakeTimer(std::uint32_t timerId) = 0;

  // No call starts after this, and one that is under way has ended, unless it makes this very call.
  virtual std::uint32_t timeKillEvent(std::uint32_t timerId) = 0;
};

// Of the installed platform; see platform.h.
Timers& timers();

}  // namespace platform
