#include "app/platform/linux/message_bus.h"

#include <dbus/dbus.h>

#include <utility>

#include "app/platform/linux/environment.h"
#include "app/platform/linux/monotonic_time.h"

namespace platform {
namespace {

constexpr char kSystemBus[] = "unix:path=/var/run/dbus/system_bus_socket";
constexpr std::int64_t kTimeoutMs = 1000;

}  // namespace

MessageBus::MessageBus(std::string address) : address(std::move(address)) {}

MessageBus::~MessageBus() {
  if (!connection) return;
  dbus_connection_close(connection);
  dbus_connection_unref(connection);
}

// By hand: the library's own way of joining a bus waits for up to half a minute.
bool MessageBus::Connect() {
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
  const char* name = nullptr;
  if (dbus_message_get_args(reply, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID))
    dbus_bus_set_unique_name(connection, name);
  dbus_message_unref(reply);
  return true;
}

// The library's blocking call would first wait until the request is written. With a bus that
// accepts and then says nothing, it would wait for ever.
DBusMessage* MessageBus::Ask(DBusMessage* request) {
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

bool MessageBus::ReadProperty(const char* interface, const char* path, const char* property,
                              bool start, int type, void* value) {
  if (!Connect()) return false;
  DBusMessage* request =
      dbus_message_new_method_call(interface, path, DBUS_INTERFACE_PROPERTIES, "Get");
  if (request) {
    dbus_message_set_auto_start(request, start ? TRUE : FALSE);
    dbus_message_append_args(request, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                             DBUS_TYPE_INVALID);
  }
  DBusMessage* reply = Ask(request);
  if (!reply) return false;
  bool read = false;
  DBusMessageIter outer;
  DBusMessageIter inner;
  if (dbus_message_iter_init(reply, &outer) &&
      dbus_message_iter_get_arg_type(&outer) == DBUS_TYPE_VARIANT) {
    dbus_message_iter_recurse(&outer, &inner);
    read = dbus_message_iter_get_arg_type(&inner) == type;
    if (read) dbus_message_iter_get_basic(&inner, value);
  }
  dbus_message_unref(reply);
  return read;
}

std::string MessageBus::OwnName() const {
  const char* const name = connection ? dbus_bus_get_unique_name(connection) : nullptr;
  return name ? name : "";
}

void MessageBus::Listen(std::function<bool(DBusMessage*)> take) {
  listener = std::move(take);
  const auto filter = [](DBusConnection* from, DBusMessage* message, void* self) {
    if (!static_cast<MessageBus*>(self)->listener(message))
      return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL &&
        !dbus_message_get_no_reply(message)) {
      if (DBusMessage* const reply = dbus_message_new_method_return(message)) {
        dbus_connection_send(from, reply, nullptr);
        dbus_message_unref(reply);
      }
    }
    return DBUS_HANDLER_RESULT_HANDLED;
  };
  dbus_connection_add_filter(connection, filter, this, nullptr);
}

int MessageBus::Watched() const {
  int fd = -1;
  if (connection) dbus_connection_get_unix_fd(connection, &fd);
  return fd;
}

bool MessageBus::Receive() {
  if (!connection) return false;
  const bool connected = dbus_connection_read_write(connection, 0);
  while (dbus_connection_dispatch(connection) == DBUS_DISPATCH_DATA_REMAINS) {
  }
  dbus_connection_flush(connection);
  return connected;
}

std::string SystemBusAddress() {
  const std::string set = Variable("DBUS_SYSTEM_BUS_ADDRESS");
  return set.empty() ? kSystemBus : set;
}

std::string SessionBusAddress() {
  std::string set = Variable("DBUS_SESSION_BUS_ADDRESS");
  const std::string runtime = Variable("XDG_RUNTIME_DIR");
  if (!set.empty() || runtime.empty()) return set;
  return "unix:path=" + runtime + "/bus";
}

}  // namespace platform
