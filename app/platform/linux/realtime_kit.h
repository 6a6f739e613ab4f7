// RealtimeKit, the service that lets an ordinary user's process have a few real-time threads, over
// the system bus. Asked until it isn't there or doesn't answer once: a machine without it costs one
// attempt. A refusal is no such failure. No call waits longer than a second. Any thread.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace platform {

class RealtimeKit {
 public:
  // `address` is the bus's, in D-Bus's form; empty for the system bus.
  explicit RealtimeKit(std::string address = {});
  ~RealtimeKit();
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
  bool Connect();
  // The reply, to be given back with dbus_message_unref; null on failure; after any but a refusal
  // nothing is asked any more. Takes over `request`.
  DBusMessage* Ask(DBusMessage* request);
  // Calls a method of the service on a thread; `value` points to four bytes of D-Bus's `type`.
  bool Raise(const char* method, pid_t thread, int type, const void* value);

  const std::string address;
  std::mutex mutex;  // guards what follows
  DBusConnection* connection = nullptr;
  bool givenUp = false;
  std::int64_t longestRunUs = -1;  // not asked yet
};

}  // namespace platform
