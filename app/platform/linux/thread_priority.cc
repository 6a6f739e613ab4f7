#include "app/platform/linux/thread_priority.h"

#include <errno.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>

#include "app/platform/linux/program_start.h"
#include "app/platform/linux/realtime_kit.h"
#include "app/platform/threads.h"

namespace platform {
namespace {

// High enough to run before everything ordinary, low enough to stay below sound servers and the
// kernel's own threads.
constexpr int kRealtimeRank = 5;
constexpr std::int32_t kHighestPriority = 15;
constexpr int kLowestNice = -20;
constexpr int kHighestNice = 19;
constexpr int kNiceOfHighClass = -10;

constinit thread_local std::int32_t currentPriority = 0;

// Nanoseconds. Asked by the first thread before main, when nobody has changed it.
const int sessionTimerSlack = prctl(PR_GET_TIMERSLACK, 0UL, 0UL, 0UL, 0UL);

int NiceOfProcess() {
  static const int nice = [] {
    errno = 0;
    const int value = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return errno == 0 ? value : 0;
  }();
  return nice;
}

// The threads that RealtimeKit made real-time ones. It demands a limit on how long they may run
// without waiting; at the limit the kernel warns the process first, and kills it a little later.
std::array<std::atomic<pid_t>, 32> guarded{};

// Signal handler: the thread that overran the limit is an ordinary one from here on.
void LeaveRealtime(int) {
  const int before = errno;
  const sched_param none{};
  for (const std::atomic<pid_t>& thread : guarded)
    if (const pid_t id = thread.load(std::memory_order_relaxed))
      sched_setscheduler(id, SCHED_OTHER, &none);
  errno = before;
}

// Keeps the calling thread in `guarded` until it ends.
struct GuardedThread {
  std::atomic<pid_t>* slot = nullptr;
  bool Enter() {
    if (slot) return true;
    for (std::atomic<pid_t>& candidate : guarded) {
      pid_t free = 0;
      if (!candidate.compare_exchange_strong(free, gettid())) continue;
      slot = &candidate;
      return true;
    }
    return false;
  }
  ~GuardedThread() {
    if (slot) slot->store(0);
  }
};
thread_local GuardedThread guardedThread;

bool HandleWarning() {
  static const bool handled = [] {
    struct sigaction before {};
    if (sigaction(SIGXCPU, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) return false;
    struct sigaction action {};
    action.sa_handler = LeaveRealtime;
    action.sa_flags = SA_RESTART;
    return sigaction(SIGXCPU, &action, nullptr) == 0;
  }();
  return handled;
}

// RealtimeKit grants nothing to a process whose real-time threads may run on and on.
bool LimitRealtimeRun() {
  const std::int64_t most = RealtimeKit::Instance().LongestRunUs();
  if (most <= 0) return false;
  rlimit limit{};
  if (getrlimit(RLIMIT_RTTIME, &limit) != 0) return false;
  KeepLimitsForPrograms();
  limit.rlim_max = std::min(limit.rlim_max, static_cast<rlim_t>(most));
  limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max / 2);
  return setrlimit(RLIMIT_RTTIME, &limit) == 0;
}

bool EnterRealtime() {
  for (const int rank : {kRealtimeRank, 1}) {
    sched_param wanted{};
    wanted.sched_priority = rank;
    if (sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &wanted) == 0) return true;
  }
  if (!HandleWarning() || !LimitRealtimeRun() || !guardedThread.Enter()) return false;
  // RealtimeKit wants to see the flag beforehand.
  const sched_param none{};
  if (sched_setscheduler(0, SCHED_OTHER | SCHED_RESET_ON_FORK, &none) != 0) return false;
  return RealtimeKit::Instance().MakeRealtime(gettid(), kRealtimeRank);
}

// The one that draws: a long drawing would overrun the limit on real-time threads, which then takes
// the real-time scheduling from all of them.
bool IsFirstThread() { return gettid() == getpid(); }

bool SetNice(std::int32_t priority) {
  const int nice = std::clamp(NiceOfProcess() - priority, kLowestNice, kHighestNice);
  if (setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), nice) == 0) return true;
  return priority > 0 && RealtimeKit::Instance().MakeHighPriority(gettid(), nice);
}

}  // namespace

bool SetPriorityOfCurrentThread(std::int32_t priority) {
  if (priority < -kHighestPriority || priority > kHighestPriority) return false;
  if (priority == currentPriority) return true;
  const bool timeCritical = priority == THREAD_PRIORITY_TIME_CRITICAL;
  if (!timeCritical || IsFirstThread() || !EnterRealtime()) {
    if (!SetNice(priority)) {
      // Kept for the threads that it starts, which may be granted more.
      if (timeCritical && IsFirstThread()) currentPriority = priority;
      return false;
    }
    if (currentPriority == THREAD_PRIORITY_TIME_CRITICAL) {
      const sched_param none{};
      sched_setscheduler(0, SCHED_OTHER, &none);
    }
  }
  // How late a wait may end: as early as possible, or the session's usual 50 microseconds.
  prctl(PR_SET_TIMERSLACK, timeCritical ? 1UL : SessionTimerSlack(), 0UL, 0UL, 0UL);
  currentPriority = priority;
  return true;
}

bool SetPriorityClassOfProcess(std::uint32_t priorityClass) {
  return priorityClass == HIGH_PRIORITY_CLASS &&
         setpriority(PRIO_PROCESS, static_cast<id_t>(getpid()), kNiceOfHighClass) == 0;
}

std::int32_t PriorityOfCurrentThread() { return currentPriority; }

void StartAtNormalPriority() {
  errno = 0;
  const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
  if (errno == 0 && nice != NiceOfProcess())
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), NiceOfProcess());
  prctl(PR_SET_TIMERSLACK, SessionTimerSlack(), 0UL, 0UL, 0UL);
}

unsigned long SessionTimerSlack() {
  return static_cast<unsigned long>(std::max(sessionTimerSlack, 0));
}

}  // namespace platform
