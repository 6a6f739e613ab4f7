// Priorities of the calling thread, -15 to 15. THREAD_PRIORITY_TIME_CRITICAL is real-time
// scheduling at a low rank where the system allows that or RealtimeKit grants it, otherwise a nice
// value of -15 below the process's; every other priority p is a nice value of -p. Children of a
// real-time thread start as ordinary ones. The process's first thread, the one with a user
// interface, is never a real-time one: there time-critical is the nice value alone.
#pragma once

#include <cstdint>

namespace platform {

// False, with the thread as it was, outside the range and where the system refuses. The first
// thread tells THREAD_PRIORITY_TIME_CRITICAL as its own even then, so that threads which it starts
// at its priority ask for real-time scheduling themselves.
bool SetPriorityOfCurrentThread(std::int32_t priority);

// The one last set, 0 if none was.
std::int32_t PriorityOfCurrentThread();

// HIGH_PRIORITY_CLASS is a nice value of -10 for the process, from which its ordinary threads count
// on. Before any thread has a priority of its own. False for another class and where the system
// refuses.
bool SetPriorityClassOfProcess(std::uint32_t priorityClass);

// For the first lines of a new thread: the priority of its maker does not pass on to it.
void StartAtNormalPriority();

// How late, in nanoseconds, the session lets a wait end: what this process was started with. The
// system's own way back leads to the slack of a thread's maker only.
unsigned long SessionTimerSlack();

}  // namespace platform
