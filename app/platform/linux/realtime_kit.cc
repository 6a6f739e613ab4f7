#include "app/platform/linux/realtime_kit.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr char kService[] = "org.freedesktop.RealtimeKit1";
constexpr char kPath[] = "/org/freedesktop/RealtimeKit1";
constexpr char kInterface[] = "org.freedesktop.RealtimeKit1";

}  // namespace

RealtimeKit::RealtimeKit(std::string busAddress)
    : bus(busAddress.empty() ? SystemBusAddress() : std::move(busAddress)) {}

RealtimeKit& RealtimeKit::Instance() {
  // Threads that nobody joins may ask until the very end of the process.
  static RealtimeKit* const instance = new RealtimeKit;
  return *instance;
}

std::int64_t RealtimeKit::LongestRunUs() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (longestRunUs >= 0) return longestRunUs;
  dbus_int64_t value = 0;
  if (!bus.ReadProperty(kInterface, kPath, "RTTimeUSecMax", true, DBUS_TYPE_INT64, &value))
    return 0;
  longestRunUs = std::max<std::int64_t>(value, 0);
  return longestRunUs;
}

bool RealtimeKit::Raise(const char* method, pid_t thread, int type, const void* value) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!bus.Connect()) return false;
  DBusMessage* request = dbus_message_new_method_call(kService, kPath, kInterface, method);
  const dbus_uint64_t id = static_cast<dbus_uint64_t>(thread);
  if (request)
    dbus_message_append_args(request, DBUS_TYPE_UINT64, &id, type, value, DBUS_TYPE_INVALID);
  DBusMessage* reply = bus.Ask(request);
  if (!reply) return false;
  dbus_message_unref(reply);
  return true;
}

bool RealtimeKit::MakeRealtime(pid_t thread, std::uint32_t rank) {
  return Raise("MakeThreadRealtime", thread, DBUS_TYPE_UINT32, &rank);
}

bool RealtimeKit::MakeHighPriority(pid_t thread, std::int32_t nice) {
  return Raise("MakeThreadHighPriority", thread, DBUS_TYPE_INT32, &nice);
}

}  // namespace platform
