// RealtimeKit as a test plays it, on a message bus of its own.
#pragma once

#include <dbus/dbus.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/linux/own_bus.h"

namespace platform {

// The service, played by the test: grants everything, or refuses everything, and notes it.
class FakeService {
 public:
  FakeService(const std::string& address, bool grant) : grants(grant) {
    dbus_threads_init_default();
    connection = dbus_connection_open_private(address.c_str(), nullptr);
    dbus_bus_register(connection, nullptr);
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    dbus_bus_request_name(connection, "org.freedesktop.RealtimeKit1", 0, nullptr);
    server = std::thread([this] { Serve(); });
  }
  ~FakeService() {
    stop = true;
    server.join();
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
  void Grant() { grants = true; }  // from now on
  // After the service has ended or before it is asked.
  const std::vector<std::string>& Calls() const { return calls; }
  void Finish() {
    stop = true;
    server.join();
    server = std::thread([] {});
  }

 private:
  void Serve() {
    while (!stop) {
      dbus_connection_read_write(connection, 10);
      while (DBusMessage* message = dbus_connection_pop_message(connection)) {
        if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL) Answer(message);
        dbus_message_unref(message);
      }
    }
  }
  void Answer(DBusMessage* message) {
    const std::string member = dbus_message_get_member(message);
    DBusMessage* reply = grants ? dbus_message_new_method_return(message)
                                : dbus_message_new_error(message, DBUS_ERROR_ACCESS_DENIED, "no");
    const char* interface = nullptr;
    const char* property = nullptr;
    dbus_uint64_t thread = 0;
    dbus_uint32_t rank = 0;
    dbus_int32_t nice = 0;
    if (dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING,
                              &property, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + property);
      if (grants) {
        const dbus_int64_t microseconds = 123456;
        DBusMessageIter outer;
        DBusMessageIter inner;
        dbus_message_iter_init_append(reply, &outer);
        dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, "x", &inner);
        dbus_message_iter_append_basic(&inner, DBUS_TYPE_INT64, &microseconds);
        dbus_message_iter_close_container(&outer, &inner);
      }
    } else if (dbus_message_get_args(message, nullptr, DBUS_TYPE_UINT64, &thread, DBUS_TYPE_UINT32,
                                     &rank, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + std::to_string(thread) + " " + std::to_string(rank));
    } else if (dbus_message_get_args(message, nullptr, DBUS_TYPE_UINT64, &thread, DBUS_TYPE_INT32,
                                     &nice, DBUS_TYPE_INVALID)) {
      calls.push_back(member + " " + std::to_string(thread) + " " + std::to_string(nice));
    } else {
      calls.push_back(member);
    }
    dbus_connection_send(connection, reply, nullptr);
    dbus_connection_flush(connection);
    dbus_message_unref(reply);
  }

  std::atomic<bool> grants;
  DBusConnection* connection = nullptr;
  std::vector<std::string> calls;  // the server's, until it has ended
  std::atomic<bool> stop{false};
  std::thread server;
};

}  // namespace platform
