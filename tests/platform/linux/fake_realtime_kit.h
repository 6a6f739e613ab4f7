// RealtimeKit as a test plays it, on a message bus of its own.
#pragma once

#include <dbus/dbus.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/platform/linux/bus_service.h"
#include "tests/platform/linux/own_bus.h"

namespace platform {

// The service, played by the test: grants everything, or refuses everything, and notes it.
class FakeService {
 public:
  FakeService(const std::string& address, bool grant)
      : grants(grant),
        service(address, "org.freedesktop.RealtimeKit1",
                [this](DBusMessage* message) { Answer(message); }) {}
  void Grant() { grants = true; }  // from now on
  // After the service has ended or before it is asked.
  const std::vector<std::string>& Calls() const { return calls; }
  void Finish() { service.Finish(); }

 private:
  void Answer(DBusMessage* message) {
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL) return;
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
    service.Send(reply);
    dbus_message_unref(reply);
  }

  std::atomic<bool> grants;
  std::vector<std::string> calls;  // the server's, until it has ended
  BusService service;
};

}  // namespace platform
