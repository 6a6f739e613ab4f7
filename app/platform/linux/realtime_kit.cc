#include "app/platform/linux/realtime_kit.h"

#include <dbus/dbus.h>

#include <cstdlib>
#include <utility>

#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

constexpr char kService[] = "org.freedesktop.RealtimeKit1";
constexpr char kPath[] = "/org/freedesktop/RealtimeKit1";
constexpr char kInterface[] = "org.freedesktop.RealtimeKit1";
constexpr char kDefaultAddress[] = "unix:path=/var/run/dbus/system_bus_socket";
constexpr std::int64_t kTimeoutMs = 1000;

std::string SystemBusAddress() {
  const char* set = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  return set && *set ? set : kDefaultAddress;
}

}  // namespace

RealtimeKit::RealtimeKit(std::string busAddress)
    : address(busAddress.empty() ? SystemBusAddress() : std::move(busAddress)) {}

RealtimeKit::~RealtimeKit() {
  if (!connection) return;
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
}

RealtimeKit& RealtimeKit::Instance() {
  // Threads that nobody joins may ask until the very end of the process.
  static RealtimeKit* const instance = new RealtimeKit;
  return *instance;
}

// By hand: the library's own way of joining a bus waits for up to half a minute.
bool RealtimeKit::Connect() {
  if (connection) return true;
  if (givenUp) return false;
  givenUp = true;
  dbus_threads_init_default();
  connection = dbus_connection_open_private(address.c_str(), nullptr);
  if (!connection) return false;
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  givenUp = false;
  DBusMessage* reply = Ask(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                        DBUS_INTERFACE_DBUS, "Hello"));
  if (!reply) return false;
  dbus_message_unref(reply);
  return true;
}

// The library's blocking call would first wait until the request is written. With a bus that
// accepts and then says nothing, it would wait for ever.
DBusMessage* RealtimeKit::Ask(DBusMessage* request) {
  DBusPendingCall* pending = nullptr;
  if (request) {
    dbus_connection_send_with_reply(connection, request, &pending, DBUS_TIMEOUT_INFINITE);
    dbus_message_unref(request);
  }
  DBusMessage* reply = nullptr;
  if (pending) {
    const std::int64_t deadline = MonotonicNow() + kTimeoutMs * kNanosecondsPerMillisecond;
    while (!dbus_pending_call_get_completed(pending)) {
      const std::int64_t left = (deadline - MonotonicNow()) / kNanosecondsPerMillisecond;
      if (left <= 0 || !dbus_connection_read_write_dispatch(connection, static_cast<int>(left)))
        break;
    }
    if (dbus_pending_call_get_completed(pending)) {
      reply = dbus_pending_call_steal_reply(pending);
    } else {
      dbus_pending_call_cancel(pending);
    }
    dbus_pending_call_unref(pending);
  }
  if (reply && dbus_message_get_type(reply) == DBUS_MESSAGE_TYPE_METHOD_RETURN) return reply;
  // The service itself refuses for a while after too many requests. If there is no service, the bus
  // answers.
  const bool refused =
      reply && !dbus_message_has_sender(reply, DBUS_SERVICE_DBUS) && dbus_message_get_sender(reply);
  if (reply) dbus_message_unref(reply);
  if (refused) return nullptr;
  givenUp = true;
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
  connection = nullptr;
  return nullptr;
}

std::int64_t RealtimeKit::LongestRunUs() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (longestRunUs >= 0) return longestRunUs;
  if (!Connect()) return 0;
  DBusMessage* request =
      dbus_message_new_method_call(kService, kPath, DBUS_INTERFACE_PROPERTIES, "Get");
  const char* interface = kInterface;
  const char* property = "RTTimeUSecMax";
  if (request)
    dbus_message_append_args(request, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                             DBUS_TYPE_INVALID);
  DBusMessage* reply = Ask(request);
  if (!reply) return 0;
  longestRunUs = 0;
  DBusMessageIter outer;
  DBusMessageIter inner;
  if (dbus_message_iter_init(reply, &outer) &&
      dbus_message_iter_get_arg_type(&outer) == DBUS_TYPE_VARIANT) {
    dbus_message_iter_recurse(&outer, &inner);
    if (dbus_message_iter_get_arg_type(&inner) == DBUS_TYPE_INT64) {
      dbus_int64_t value = 0;
      dbus_message_iter_get_basic(&inner, &value);
      longestRunUs = value > 0 ? value : 0;
    }
  }
  dbus_message_unref(reply);
  return longestRunUs;
}

bool RealtimeKit::Raise(const char* method, pid_t thread, int type, const void* value) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!Connect()) return false;
  DBusMessage* request = dbus_message_new_method_call(kService, kPath, kInterface, method);
  const dbus_uint64_t id = static_cast<dbus_uint64_t>(thread);
  if (request)
    dbus_message_append_args(request, DBUS_TYPE_UINT64, &id, type, value, DBUS_TYPE_INVALID);
  DBusMessage* reply = Ask(request);
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
