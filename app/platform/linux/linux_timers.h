// Periodic timers, each on a thread of its own at time-critical priority. A timer's calls stand on
// a fixed grid from its start on; a grid point that passes while a call runs, or while the machine
// is too busy, is left out. A timer that sleeps makes no system call and wakes nothing; its thread
// is the one that waits for the news, so that an answer at once passes through no other. Any
// thread.
#pragma once

#include <memory>

#include "app/platform/timers.h"

namespace platform {

class LinuxTimers : public Timers {
 public:
  // Periods, in milliseconds.
  static constexpr std::uint32_t kShortestPeriod = 1;
  static constexpr std::uint32_t kLongestPeriod = 1000000;

  // Results besides TIMERR_NOERROR, as published.
  static constexpr std::uint32_t TIMERR_NOCANDO = 97;
  static constexpr std::uint32_t MMSYSERR_INVALPARAM = 11;

  LinuxTimers();
  // Ends all timers and waits for the calls under way. Not from a timer's callback.
  ~LinuxTimers() override;
  LinuxTimers(const LinuxTimers&) = delete;
  LinuxTimers& operator=(const LinuxTimers&) = delete;

  std::uint32_t timeGetDevCaps(TIMECAPS* caps) override;
  // Only look at the value: timers are as fine as the system's clock at all times.
  std::uint32_t timeBeginPeriod(std::uint32_t periodMs) override;
  std::uint32_t timeEndPeriod(std::uint32_t periodMs) override;
  // 0 for a delay outside the limits, no callback, other flags than TIME_PERIODIC, or when there
  // can be no thread. `resolutionMs` has no meaning here.
  std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                             TimerCallback callback, void* user, std::uint32_t flags) override;
  // `news` is a descriptor that becomes readable. Where the timer has got no descriptor
  // for WakeTimer it doesn't sleep.
  void SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) override;
  void WakeTimer(std::uint32_t timerId) override;
  // MMSYSERR_INVALPARAM, at once, for an id that is not of a running timer.
  std::uint32_t timeKillEvent(std::uint32_t timerId) override;

 private:
  struct Rest;
  struct Timer;
  struct State;

  static bool Sleep(const Timer& timer, const Rest& rest);
  static void* RunTimer(void* start);

  std::shared_ptr<State> state;
};

}  // namespace platform
