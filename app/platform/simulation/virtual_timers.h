// Multimedia timers of the simulation. Each timer has a thread of its own, which goes before all
// others that are due at the same millisecond; several timers go in the order of their making.
// A tick comes at the period's multiples from the call of timeSetEvent on; multiples that pass
// while a call is under way are skipped, one at the very millisecond of its end is not. A multiple
// at the very millisecond at which a sleeping timer is woken by another thread has passed, too: the
// timer would have gone first.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/scheduler.h"
#include "app/platform/timers.h"

namespace platform::simulation {

class VirtualTimers final : public Timers {
 public:
  VirtualTimers(Scheduler& scheduler, Journal& journal);

  std::uint32_t timeGetDevCaps(TIMECAPS* caps) override;
  std::uint32_t timeBeginPeriod(std::uint32_t periodMs) override;
  std::uint32_t timeEndPeriod(std::uint32_t periodMs) override;
  std::uint32_t timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                             TimerCallback callback, void* user, std::uint32_t flags) override;
  void SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) override;
  void WakeTimer(std::uint32_t timerId) override;
  std::uint32_t timeKillEvent(std::uint32_t timerId) override;

  // There is something new of a device at `t`, or there is now.
  void TellOfNews(std::uint64_t t);

  // Off: timers don't sleep, and each period brings its call.
  bool maySleep = true;

  TIMECAPS limits{1, 65535};

  // Periods that were asked for and not given back.
  std::uint32_t OpenPeriods() const;

 private:
  struct Timer {
    bool killed = false;
    bool calling = false;
    std::shared_ptr<VirtualThread> thread;
    bool resting = false;
    bool atOnce = false;
    std::uint64_t restUntil = 0;
    bool woken = false;                                         // since the last call began
    bool byNews = false;                                        // and by news
    std::shared_ptr<Event> wakeUp = std::make_shared<Event>();  // auto-reset
  };

  void Wake(Timer& timer, bool byNews);
  void Signal(Timer& timer);
  // Until the rest is over; then the time of the next call.
  std::uint64_t Rest(Timer& timer, std::uint64_t last, std::uint32_t periodMs);

  Scheduler& scheduler;
  Journal& journal;
  std::uint32_t lastId = 0;
  std::map<std::uint32_t, std::shared_ptr<Timer>> timers;
  std::uint64_t newsAt = 0;                        // the next that was told of, while it is ahead
  std::map<std::uint32_t, std::uint32_t> periods;  // how often each has been asked for
};

}  // namespace platform::simulation
