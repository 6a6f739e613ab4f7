// What is left of a thread that was ended by force, where the system can't stop one in its tracks
// without running its clean-up code, which would give back what the thread holds. The thread counts
// as ended, is cut off, and goes to sleep for good when it next reaches for the platform.
#pragma once

#include <atomic>

namespace platform {

// Of the calling thread; null on threads that TerminateThread can't reach. Never false again once
// it is true.
extern constinit thread_local const std::atomic<bool>* cutOffFlag;

[[noreturn]] void ParkForever();

inline bool IsCutOff() { return cutOffFlag && cutOffFlag->load(std::memory_order_acquire); }

// Every accessor of a group asks this (platform.cc). It is for an implementation to ask where a
// call comes to it in another way, at an open file or a search, and at the end of a wait. No system
// call.
inline void StopHereIfCutOff() {
  if (IsCutOff()) ParkForever();
}

}  // namespace platform
