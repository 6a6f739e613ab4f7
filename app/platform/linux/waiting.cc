#include "app/platform/linux/waiting.h"

#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstddef>

#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

// The waiters of a condition that has gone meanwhile don't exist any more, and the kernel looks at
// the address alone: at worst another wait there ends for nothing, as any may.
void Wake(const void* word) { syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, INT_MAX); }

// Of the calling thread.
struct Held {
  int depth = 0;
  std::size_t count = 0;
  std::array<const void*, 8> words{};

  // False when there is no room.
  bool Keep(const void* word) {
    for (std::size_t i = 0; i < count; ++i)
      if (words[i] == word) return true;
    if (count == words.size()) return false;
    words[count++] = word;
    return true;
  }
  void LetOut() {
    for (std::size_t i = 0; i < count; ++i) Wake(words[i]);
    count = 0;
  }
};
constinit thread_local Held held;

}  // namespace

HeldWakes::HeldWakes() { ++held.depth; }

HeldWakes::~HeldWakes() {
  if (--held.depth == 0) held.LetOut();
}

void HeldWakes::LetOut() { held.LetOut(); }

void SleepUntil(std::int64_t end) {
  HeldWakes::LetOut();
  const timespec when = ToTimespec(end);
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
  }
}

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

int MonotonicCondition::Sleep(std::unique_lock<PriorityMutex>& locked, const timespec* end) {
  static_assert(sizeof wakes == sizeof(std::uint32_t) &&
                std::atomic<std::uint32_t>::is_always_lock_free);
  const std::uint32_t seen = wakes.load(std::memory_order_relaxed);
  ++waiters;
  locked.unlock();
  HeldWakes::LetOut();
  // Comes back at once when a wake fell between the unlock and here.
  const long result = syscall(SYS_futex, &wakes, FUTEX_WAIT_BITSET_PRIVATE, seen, end, nullptr,
                              FUTEX_BITSET_MATCH_ANY);
  const bool timedOut = result == -1 && errno == ETIMEDOUT;
  locked.lock();
  --waiters;
  return timedOut ? ETIMEDOUT : 0;
}

void MonotonicCondition::Wait(std::unique_lock<PriorityMutex>& locked) { Sleep(locked, nullptr); }

bool MonotonicCondition::WaitUntil(std::unique_lock<PriorityMutex>& locked, std::int64_t deadline) {
  const timespec end = ToTimespec(deadline);
  return Sleep(locked, &end) != ETIMEDOUT;
}

void MonotonicCondition::WakeAll() {
  wakes.fetch_add(1, std::memory_order_relaxed);
  if (waiters == 0) return;
  if (held.depth == 0 || !held.Keep(&wakes)) Wake(&wakes);
}

}  // namespace platform
