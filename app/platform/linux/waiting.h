// A mutex and a condition for threads of different priorities. A holder of the mutex inherits the
// priority of whoever waits for it, so that a real-time thread is not held up by one that has been
// pushed off the processor; the condition waits for a moment of CLOCK_MONOTONIC.
#pragma once

#include <pthread.h>

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
  pthread_mutex_t* Native() { return &mutex; }

 private:
  pthread_mutex_t mutex;
};

class MonotonicCondition {
 public:
  MonotonicCondition();
  ~MonotonicCondition();
  MonotonicCondition(const MonotonicCondition&) = delete;
  MonotonicCondition& operator=(const MonotonicCondition&) = delete;

  // `held` is the locked mutex. Returns may be spurious.
  void Wait(std::unique_lock<PriorityMutex>& held);
  // False once `deadline` (nanoseconds) has passed.
  bool WaitUntil(std::unique_lock<PriorityMutex>& held, std::int64_t deadline);
  void WakeAll();

 private:
  pthread_cond_t condition;
};

}  // namespace platform
