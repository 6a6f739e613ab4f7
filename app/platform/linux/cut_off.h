// What is left of a thread that was ended by force. Linux can't stop a thread in its tracks without
// running its clean-up code, which would give back what the thread holds. So the thread counts as
// ended, is cut off, and goes to sleep for good at its next call through the platform.
#pragma once

#include <atomic>

namespace platform {

// Of the calling thread; null on threads that TerminateThread can't reach.
extern constinit thread_local const std::atomic<bool>* cutOffFlag;

[[noreturn]] void ParkForever();

// First thing in every operation of the platform, and last in those that wait. No system call.
inline void StopHereIfCutOff() {
  if (cutOffFlag && cutOffFlag->load(std::memory_order_acquire)) ParkForever();
}

}  // namespace platform
