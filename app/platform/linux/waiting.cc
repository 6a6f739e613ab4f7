#include "app/platform/linux/waiting.h"

#include <errno.h>
#include <time.h>

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

MonotonicCondition::MonotonicCondition() {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(&condition, &attributes);
  pthread_condattr_destroy(&attributes);
}

MonotonicCondition::~MonotonicCondition() { pthread_cond_destroy(&condition); }

void MonotonicCondition::Wait(std::unique_lock<PriorityMutex>& held) {
  pthread_cond_wait(&condition, held.mutex()->Native());
}

bool MonotonicCondition::WaitUntil(std::unique_lock<PriorityMutex>& held, std::int64_t deadline) {
  const timespec end = ToTimespec(deadline);
  return pthread_cond_timedwait(&condition, held.mutex()->Native(), &end) != ETIMEDOUT;
}

void MonotonicCondition::WakeAll() { pthread_cond_broadcast(&condition); }

}  // namespace platform
