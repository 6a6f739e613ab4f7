#include "app/platform/simulation/virtual_timers.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace platform::simulation {
namespace {

constexpr std::uint32_t MMSYSERR_INVALPARAM = 11;
constexpr std::uint32_t TIMERR_NOCANDO = 97;

// The first point of the grid behind `last` that is at `earliest` or later.
std::uint64_t NextMultiple(std::uint64_t last, std::uint32_t periodMs, std::uint64_t earliest) {
  const std::uint64_t next = last + periodMs;
  if (earliest <= next) return next;
  return next + (earliest - next + periodMs - 1) / periodMs * periodMs;
}

}  // namespace

VirtualTimers::VirtualTimers(Scheduler& scheduler, Journal& journal)
    : scheduler(scheduler), journal(journal) {}

std::uint32_t VirtualTimers::timeGetDevCaps(TIMECAPS* caps) {
  if (const auto fault = journal.Enter("timeGetDevCaps")) {
    return static_cast<std::uint32_t>(*fault);
  }
  if (!caps) return TIMERR_NOCANDO;
  *caps = limits;
  return TIMERR_NOERROR;
}

std::uint32_t VirtualTimers::timeBeginPeriod(std::uint32_t periodMs) {
  if (const auto fault = journal.Enter("timeBeginPeriod", periodMs)) {
    return static_cast<std::uint32_t>(*fault);
  }
  if (periodMs < limits.wPeriodMin || periodMs > limits.wPeriodMax) return TIMERR_NOCANDO;
  ++periods[periodMs];
  return TIMERR_NOERROR;
}

std::uint32_t VirtualTimers::timeEndPeriod(std::uint32_t periodMs) {
  if (const auto fault = journal.Enter("timeEndPeriod", periodMs)) {
    return static_cast<std::uint32_t>(*fault);
  }
  const auto period = periods.find(periodMs);
  if (period == periods.end()) return TIMERR_NOCANDO;
  if (--period->second == 0) periods.erase(period);
  return TIMERR_NOERROR;
}

std::uint32_t VirtualTimers::timeSetEvent(std::uint32_t delayMs, std::uint32_t resolutionMs,
                                          TimerCallback callback, void* user, std::uint32_t flags) {
  if (journal.Enter("timeSetEvent", delayMs, resolutionMs)) return 0;
  if (delayMs == 0 || delayMs < limits.wPeriodMin || delayMs > limits.wPeriodMax) return 0;
  if (!callback || flags != TIME_PERIODIC) return 0;
  const std::uint32_t id = lastId + 1;
  auto timer = std::make_shared<Timer>();
  Timer* self = timer.get();  // lives until its thread has ended
  const std::uint64_t start = scheduler.Now();
  timer->thread = scheduler.Spawn(
      Rank::Timer, "timer " + std::to_string(id), [this, self, id, start, delayMs, callback, user] {
        std::uint64_t tick = start;
        while (!self->killed) {
          tick = self->resting ? Rest(*self, tick, delayMs)
                               : NextMultiple(tick, delayMs, scheduler.Now());
          if (tick > scheduler.Now()) scheduler.SleepUntil(tick);
          self->calling = true;
          self->woken = false;
          self->byNews = false;
          callback(id, user);
          self->calling = false;
        }
        timers.erase(id);
        return 0u;
      });
  if (!timer->thread) return 0;
  lastId = id;
  timers.emplace(id, std::move(timer));
  return id;
}

void VirtualTimers::SleepTimer(std::uint32_t timerId, Handle, bool atOnce) {
  const auto found = timers.find(timerId);
  if (found == timers.end() || found->second->woken || !maySleep) return;
  Timer& timer = *found->second;
  timer.resting = true;
  timer.atOnce = atOnce;
  timer.restUntil = newsAt > scheduler.Now() ? newsAt : Scheduler::kNever;
}

void VirtualTimers::WakeTimer(std::uint32_t timerId) {
  const auto found = timers.find(timerId);
  if (found != timers.end()) Wake(*found->second, false);
}

void VirtualTimers::TellOfNews(std::uint64_t t) {
  const std::uint64_t now = scheduler.Now();
  if (t > now) newsAt = newsAt > now ? std::min(newsAt, t) : t;
  for (const auto& [id, timer] : timers) {
    if (t <= now) {
      Wake(*timer, true);
    } else if (timer->resting && t < timer->restUntil) {
      timer->restUntil = t;
      Signal(*timer);
    }
  }
}

void VirtualTimers::Wake(Timer& timer, bool byNews) {
  timer.woken = true;
  timer.byNews |= byNews;
  if (timer.resting) Signal(timer);
}

void VirtualTimers::Signal(Timer& timer) {
  timer.wakeUp->signalled = true;
  scheduler.WakeWaiters(*timer.wakeUp);
}

std::uint64_t VirtualTimers::Rest(Timer& timer, std::uint64_t last, std::uint32_t periodMs) {
  bool signalled;
  do {
    // Handed over whole: a kill drops this stack as it stands, with whatever it still holds.
    std::vector<std::shared_ptr<Waitable>> end;
    end.push_back(timer.wakeUp);
    signalled = scheduler.Wait(std::move(end), timer.restUntil) == 0;
    // A signal alone says that the end has come nearer.
  } while (signalled && !timer.woken);
  timer.resting = false;
  timer.wakeUp->signalled = false;
  const std::uint64_t now = scheduler.Now();
  if (timer.atOnce && (!timer.woken || timer.byNews)) return std::max(now, last + periodMs);
  return NextMultiple(last, periodMs, timer.woken ? now + 1 : now);
}

std::uint32_t VirtualTimers::timeKillEvent(std::uint32_t timerId) {
  if (const auto fault = journal.Enter("timeKillEvent", timerId)) {
    return static_cast<std::uint32_t>(*fault);
  }
  const auto found = timers.find(timerId);
  if (found == timers.end() || found->second->killed) return MMSYSERR_INVALPARAM;
  const std::shared_ptr<Timer> timer = found->second;
  timer->killed = true;
  if (!timer->calling) {
    scheduler.Terminate(*timer->thread, 0);
    timers.erase(found);
  } else if (timer->thread.get() != &scheduler.Current()) {
    // The call finishes, and with it its thread.
    scheduler.Wait({timer->thread}, Scheduler::kNever);
  }
  return TIMERR_NOERROR;
}

std::uint32_t VirtualTimers::OpenPeriods() const {
  std::uint32_t sum = 0;
  for (const auto& [period, times] : periods) sum += times;
  return sum;
}

}  // namespace platform::simulation
