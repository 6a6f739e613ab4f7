// RealtimeKit, the service that lets an ordinary user's process have a few real-time threads, over
// the system bus. Asked until it isn't there or doesn't answer once: a machine without it costs one
// attempt. A refusal is no such failure. No call waits longer than a second. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <string>

#include "app/platform/linux/message_bus.h"

namespace platform {

class RealtimeKit {
 public:
  // `address` is the bus's, in D-Bus's form; empty for the system bus.
  explicit RealtimeKit(std::string address = {});
  RealtimeKit(const RealtimeKit&) = delete;
  RealtimeKit& operator=(const RealtimeKit&) = delete;

  // The process's own.
  static RealtimeKit& Instance();

  // Microseconds that a real-time thread may run without waiting, to be the process's limit
  // before MakeRealtime; 0 when the service doesn't answer.
  std::int64_t LongestRunUs();

  // False when the service isn't there or refuses.
  bool MakeRealtime(pid_t thread, std::uint32_t rank);
  bool MakeHighPriority(pid_t thread, std::int32_t nice);

 private:
  // Calls a method of the service on a thread; `value` points to four bytes of D-Bus's `type`.
  bool Raise(const char* method, pid_t thread, int type, const void* value);

  std::mutex mutex;  // guards what follows
  MessageBus bus;
  std::int64_t longestRunUs = -1;  // not asked yet
};

}  // namespace platform
