// What a process asks of the kernel, as the kernel's own tracing tells it; the process isn't slowed
// down or stopped for it.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvaro::kernel {

struct SystemCall {
  pid_t thread;
  std::int64_t us;      // monotonic clock
  long number;          // SYS_read and so on
  unsigned long first;  // its first argument, a file descriptor for most
};

// All system calls that the threads which `process` has now begin within `ms` from now, in order.
// `begun` is called once the tracing has begun.
std::vector<SystemCall> TraceCalls(pid_t process, int ms,
                                   const std::function<void()>& begun = nullptr);

// The thread of that name; -1 if there is none.
pid_t ThreadOf(pid_t process, const std::string& name);

// The descriptor under which `process` holds `path` open, -1 if it doesn't.
int DescriptorOf(pid_t process, const std::string& path);

// How often one of the threads that `process` has now was given the processor.
long SwitchesOf(pid_t process);

}  // namespace kelvaro::kernel
