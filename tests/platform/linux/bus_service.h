// A service on a message bus, played by a test.
#pragma once

#include <dbus/dbus.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace platform {

// Has that name on the bus, and hands each message that comes to `take`, on a thread of its own.
// Belongs behind all that `take` uses.
class BusService {
 public:
  BusService(const std::string& address, const char* name, std::function<void(DBusMessage*)> take)
      : take(std::move(take)) {
    dbus_threads_init_default();
    connection = dbus_connection_open_private(address.c_str(), nullptr);
    dbus_bus_register(connection, nullptr);
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    dbus_bus_request_name(connection, name, 0, nullptr);
    server = std::thread([this] { Serve(); });
  }
  ~BusService() {
    Finish();
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  // Takes no message any more, and is taking none.
  void Finish() {
    stop = true;
    if (server.joinable()) server.join();
  }
  void Send(DBusMessage* message) {
    dbus_connection_send(connection, message, nullptr);
    dbus_connection_flush(connection);
  }

 private:
  void Serve() {
    while (!stop) {
      dbus_connection_read_write(connection, 10);
      while (DBusMessage* const message = dbus_connection_pop_message(connection)) {
        take(message);
        dbus_message_unref(message);
      }
    }
  }

  const std::function<void(DBusMessage*)> take;
  DBusConnection* connection = nullptr;
  std::atomic<bool> stop{false};
  std::thread server;
};

}  // namespace platform
