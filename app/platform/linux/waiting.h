// A mutex and a condition for threads of different priorities. A holder of the mutex inherits the
// priority of a thread that waits for it, so a holder that was pushed off the processor doesn't
// hold up a real-time thread; the condition waits for a moment of CLOCK_MONOTONIC. A third thing
// keeps a woken thread from coming too early. And a sleep.
#pragma once

#include <pthread.h>
#include <time.h>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace platform {

class PriorityMutex {
 public:
  PriorityMutex();
  ~PriorityMutex();
  PriorityMutex(const PriorityMutex&) = delete;
  PriorityMutex& operator=(const PriorityMutex&) = delete;

  void lock();
  void unlock();

 private:
  pthread_mutex_t mutex;
};

// The library's own condition takes a mutex of this kind back as if others waited for it, and so
// pays a system call at its next unlock; this one doesn't, which each tick of a timer would feel.
class MonotonicCondition {
 public:
  MonotonicCondition() = default;
  MonotonicCondition(const MonotonicCondition&) = delete;
  MonotonicCondition& operator=(const MonotonicCondition&) = delete;

  // `locked` is the locked mutex. Returns may be spurious.
  void Wait(std::unique_lock<PriorityMutex>& locked);
  // False once `deadline` (nanoseconds) has passed.
  bool WaitUntil(std::unique_lock<PriorityMutex>& locked, std::int64_t deadline);
  // REQUIRES: the waiters' mutex is held, and what they wait for was changed under it. The wake
  // goes out at once, or at the end of the caller's HeldWakes.
  void WakeAll();

 private:
  // 0, or ETIMEDOUT once `end` has passed; no end for null.
  int Sleep(std::unique_lock<PriorityMutex>& locked, const timespec* end);

  std::atomic<std::uint32_t> wakes{0};
  std::uint32_t waiters = 0;  // guarded by the waiters' mutex
};

// While one of these lives, the wakes of its thread wait for its end, or for that of the one around
// it. A thread that is woken on the spot runs before its waker has let go of a lock, finds it taken
// and sleeps again. A wait of the waker's own lets the wakes out first.
class HeldWakes {
 public:
  HeldWakes();
  ~HeldWakes();
  HeldWakes(const HeldWakes&) = delete;
  HeldWakes& operator=(const HeldWakes&) = delete;

  // For whoever is about to wait by means that aren't of this file.
  static void LetOut();
};

// Until that moment of CLOCK_MONOTONIC, in nanoseconds.
void SleepUntil(std::int64_t end);

}  // namespace platform
