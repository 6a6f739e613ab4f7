#include "app/platform/linux/waiting.h"

#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "app/platform/linux/monotonic_time.h"

namespace platform {

PriorityMutex::PriorityMutex() {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
  // A kernel without priority inheritance refuses here; a plain mutex is right there too.
  if (pthread_mutex_init(&mutex, &attributes) != 0) pthread_mutex_init(&mutex, nullptr);
  pthread_mutexattr_destroy(&attributes);
}

PriorityMutex::~PriorityMutex() { pthread_mutex_destroy(&mutex); }

void PriorityMutex::lock() { pthread_mutex_lock(&mutex); }

void PriorityMutex::unlock() { pthread_mutex_unlock(&mutex); }

int MonotonicCondition::Sleep(std::unique_lock<PriorityMutex>& held, const timespec* end) {
  static_assert(sizeof wakes == sizeof(std::uint32_t) &&
                std::atomic<std::uint32_t>::is_always_lock_free);
  const std::uint32_t seen = wakes.load(std::memory_order_relaxed);
  ++waiters;
  held.unlock();
  // Comes back at once when a wake fell between the unlock and here.
  const long result = syscall(SYS_futex, &wakes, FUTEX_WAIT_BITSET_PRIVATE, seen, end, nullptr,
                              FUTEX_BITSET_MATCH_ANY);
  const bool timedOut = result == -1 && errno == ETIMEDOUT;
  held.lock();
  --waiters;
  return timedOut ? ETIMEDOUT : 0;
}

void MonotonicCondition::Wait(std::unique_lock<PriorityMutex>& held) { Sleep(held, nullptr); }

bool MonotonicCondition::WaitUntil(std::unique_lock<PriorityMutex>& held, std::int64_t deadline) {
  const timespec end = ToTimespec(deadline);
  return Sleep(held, &end) != ETIMEDOUT;
}

void MonotonicCondition::WakeAll() {
  wakes.fetch_add(1, std::memory_order_relaxed);
  if (waiters != 0) syscall(SYS_futex, &wakes, FUTEX_WAKE_PRIVATE, INT_MAX);
}

}  // namespace platform
