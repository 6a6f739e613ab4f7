#include "app/platform/linux/linux_timers.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

#include "app/platform/cut_off.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/detached_thread.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/thread_priority.h"
#include "app/platform/linux/waiting.h"
#include "app/platform/threads.h"
#include "app/platform/timer_grid.h"

namespace platform {
namespace {

constexpr std::int64_t kShortSleepNs = 20 * kNanosecondsPerMillisecond;

}  // namespace

struct LinuxTimers::Rest {
  Handle news = kInvalidHandle;
  bool atOnce = false;
};

struct LinuxTimers::Timer {
  std::shared_ptr<State> state;
  std::uint32_t id = 0;
  std::int64_t periodNs = 0;
  TimerCallback callback = nullptr;
  void* user = nullptr;
  Descriptor wakeUp;  // readable: a rest is over
  // Guarded by the state's mutex.
  bool killed = false;
  std::thread::id calling;  // its thread, while a call is under way
  bool woken = false;       // since the last call began
  std::optional<Rest> rest;
  bool asleep = false;         // its thread, in that rest
  MonotonicCondition changed;  // it was killed, or the last call has ended

  void Kill() {
    killed = true;
    changed.WakeAll();
    EndRest();
  }
  void EndRest() {
    if (rest && asleep) eventfd_write(wakeUp.Get(), 1);
    rest.reset();
  }
  // False when it was killed meanwhile. `lock` is the state's.
  bool SleepUntil(std::int64_t end, std::unique_lock<PriorityMutex>& lock) {
    const std::int64_t left = end - MonotonicNow();
    if (left > kShortSleepNs) {
      while (!killed && changed.WaitUntil(lock, end)) {
      }
    } else if (left > 0) {
      // Costs less, which each tick feels; a kill doesn't end it, for which nobody waits long.
      lock.unlock();
      platform::SleepUntil(end);
      lock.lock();
    }
    return !killed;
  }
};

struct LinuxTimers::State {
  PriorityMutex mutex;
  std::map<std::uint32_t, std::shared_ptr<Timer>> running;
  std::uint32_t lastId = 0;
  std::uint32_t threads = 0;
  MonotonicCondition threadEnded;
};

LinuxTimers::LinuxTimers() : state(std::make_shared<State>()) {}

LinuxTimers::~LinuxTimers() {
  std::unique_lock<PriorityMutex> lock(state->mutex);
  for (const auto& [id, timer] : state->running) timer->Kill();
  state->running.clear();
  while (state->threads != 0) state->threadEnded.Wait(lock);
}

std::uint32_t LinuxTimers::timeGetDevCaps(TIMECAPS* caps) {
  if (!caps) return TIMERR_NOCANDO;
  caps->wPeriodMin = kShortestPeriod;
  caps->wPeriodMax = kLongestPeriod;
  return TIMERR_NOERROR;
}

std::uint32_t LinuxTimers::timeBeginPeriod(std::uint32_t periodMs) {
  return periodMs < kShortestPeriod || periodMs > kLongestPeriod ? TIMERR_NOCANDO : TIMERR_NOERROR;
}

std::uint32_t LinuxTimers::timeEndPeriod(std::uint32_t periodMs) {
  return timeBeginPeriod(periodMs);
}

// Until the rest is over; whether that was by news.
bool LinuxTimers::Sleep(const Timer& timer, const Rest& rest) {
  pollfd readable[] = {{timer.wakeUp.Get(), POLLIN, 0}, {static_cast<int>(rest.news), POLLIN, 0}};
  return poll(readable, 2, -1) > 0 && readable[0].revents == 0;
}

void* LinuxTimers::RunTimer(void* start) {
  const std::unique_ptr<std::shared_ptr<Timer>> own(static_cast<std::shared_ptr<Timer>*>(start));
  const std::shared_ptr<Timer> timer = *own;
  const std::shared_ptr<State> state = timer->state;
  NameCurrentThread("timer");
  StartAtNormalPriority();
  // Where it is refused the timer is as good as an ordinary thread can be.
  SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
  prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);

  std::int64_t last = MonotonicNow();  // a point of the grid
  std::int64_t next = last + timer->periodNs;
  // To the next point that is still ahead.
  const auto goOn = [&] {
    last = next;
    next = NextGridPoint(next, MonotonicNow(), timer->periodNs);
  };
  std::unique_lock<PriorityMutex> lock(state->mutex);
  while (!timer->killed) {
    if (timer->rest) {
      const Rest rest = *timer->rest;
      timer->asleep = true;
      lock.unlock();
      const bool byNews = Sleep(*timer, rest);
      const std::int64_t now = MonotonicNow();
      if (byNews && rest.atOnce) {
        next = std::max(now, last + timer->periodNs);
      } else if (now >= next) {
        goOn();
      }
      lock.lock();
      timer->asleep = false;
      // What ended it would end the next one too.
      eventfd_t count;
      if (!timer->rest) eventfd_read(timer->wakeUp.Get(), &count);
      timer->rest.reset();
      continue;
    }
    if (!timer->SleepUntil(next, lock)) break;
    timer->calling = std::this_thread::get_id();
    timer->woken = false;
    lock.unlock();
    {
      // The threads that the callback wakes want what the callback still holds.
      const HeldWakes untilItEnds;
      timer->callback(timer->id, timer->user);
    }
    goOn();
    lock.lock();
    timer->calling = {};
  }
  timer->changed.WakeAll();
  --state->threads;
  state->threadEnded.WakeAll();
  return nullptr;
}

std::uint32_t LinuxTimers::timeSetEvent(std::uint32_t delayMs, std::uint32_t /*resolutionMs*/,
                                        TimerCallback callback, void* user, std::uint32_t flags) {
  if (delayMs < kShortestPeriod || delayMs > kLongestPeriod || !callback || flags != TIME_PERIODIC)
    return 0;
  auto timer = std::make_shared<Timer>();
  timer->state = state;
  timer->periodNs = std::int64_t{delayMs} * kNanosecondsPerMillisecond;
  timer->callback = callback;
  timer->user = user;
  timer->wakeUp = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));

  const std::lock_guard<PriorityMutex> lock(state->mutex);
  do {
    ++state->lastId;
  } while (state->lastId == 0 || state->running.count(state->lastId) != 0);
  timer->id = state->lastId;
  auto start = std::make_unique<std::shared_ptr<Timer>>(timer);
  if (!StartDetachedThread(RunTimer, start.get())) return 0;
  (void)start.release();  // the thread's now
  ++state->threads;
  const std::uint32_t id = timer->id;
  state->running.emplace(id, std::move(timer));
  return id;
}

void LinuxTimers::SleepTimer(std::uint32_t timerId, Handle news, bool atOnce) {
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  const auto found = state->running.find(timerId);
  if (found == state->running.end() || found->second->woken || !found->second->wakeUp) return;
  found->second->rest = Rest{news, atOnce};
}

void LinuxTimers::WakeTimer(std::uint32_t timerId) {
  const std::lock_guard<PriorityMutex> lock(state->mutex);
  const auto found = state->running.find(timerId);
  if (found == state->running.end()) return;
  found->second->woken = true;
  found->second->EndRest();
}

std::uint32_t LinuxTimers::timeKillEvent(std::uint32_t timerId) {
  {
    std::unique_lock<PriorityMutex> lock(state->mutex);
    const auto found = state->running.find(timerId);
    if (found == state->running.end()) return MMSYSERR_INVALPARAM;
    const std::shared_ptr<Timer> timer = found->second;
    timer->Kill();
    state->running.erase(found);
    while (timer->calling != std::thread::id() && timer->calling != std::this_thread::get_id())
      timer->changed.Wait(lock);
  }
  StopHereIfCutOff();
  return TIMERR_NOERROR;
}

}  // namespace platform
