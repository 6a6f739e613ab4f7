#include "app/platform/linux/linux_timers.h"

#include <sys/prctl.h>

#include <map>
#include <mutex>
#include <thread>

#include "app/platform/cut_off.h"
#include "app/platform/linux/detached_thread.h"
#include "app/platform/linux/monotonic_time.h"
#include "app/platform/linux/thread_priority.h"
#include "app/platform/linux/waiting.h"
#include "app/platform/threads.h"

namespace platform {

struct LinuxTimers::Timer {
  std::shared_ptr<State> state;
  std::uint32_t id = 0;
  std::int64_t periodNs = 0;
  TimerCallback callback = nullptr;
  void* user = nullptr;
  // Guarded by the state's mutex.
  bool killed = false;
  std::thread::id calling;  // its thread, while a call is under way
  MonotonicCondition news;  // it was killed, or the last call has ended
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
  for (const auto& [id, timer] : state->running) {
    timer->killed = true;
    timer->news.WakeAll();
  }
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

void* LinuxTimers::RunTimer(void* start) {
  const std::unique_ptr<std::shared_ptr<Timer>> own(static_cast<std::shared_ptr<Timer>*>(start));
  const std::shared_ptr<Timer> timer = *own;
  const std::shared_ptr<State> state = timer->state;
  NameCurrentThread("timer");
  StartAtNormalPriority();
  // Where it is refused the timer is as good as an ordinary thread can be.
  SetPriorityOfCurrentThread(THREAD_PRIORITY_TIME_CRITICAL);
  prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);

  std::int64_t next = MonotonicNow() + timer->periodNs;
  std::unique_lock<PriorityMutex> lock(state->mutex);
  while (!timer->killed) {
    if (timer->news.WaitUntil(lock, next)) continue;  // killed, or woken for nothing
    if (timer->killed) break;
    timer->calling = std::this_thread::get_id();
    lock.unlock();
    timer->callback(timer->id, timer->user);
    // The next grid point that is still ahead.
    const std::int64_t late = MonotonicNow() - next;
    next += (late / timer->periodNs + 1) * timer->periodNs;
    lock.lock();
    timer->calling = {};
  }
  timer->news.WakeAll();
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

std::uint32_t LinuxTimers::timeKillEvent(std::uint32_t timerId) {
  {
    std::unique_lock<PriorityMutex> lock(state->mutex);
    const auto found = state->running.find(timerId);
    if (found == state->running.end()) return MMSYSERR_INVALPARAM;
    const std::shared_ptr<Timer> timer = found->second;
    timer->killed = true;
    timer->news.WakeAll();
    state->running.erase(found);
    while (timer->calling != std::thread::id() && timer->calling != std::this_thread::get_id())
      timer->news.Wait(lock);
  }
  StopHereIfCutOff();
  return TIMERR_NOERROR;
}

}  // namespace platform
