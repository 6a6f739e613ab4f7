#include "app/platform/linux/icon_area.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/host/files.h"
#include "tests/platform/linux/fake_realtime_kit.h"

namespace platform {
namespace {

using kelvaro::tests::Variable;

// The service that programs offer their icons to.
class Watcher {
 public:
  Watcher(const std::string& address, bool hasHost) : hasHost(hasHost ? TRUE : FALSE) {
    dbus_threads_init_default();
    connection = dbus_connection_open_private(address.c_str(), nullptr);
    dbus_bus_register(connection, nullptr);
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    dbus_bus_request_name(connection, "org.kde.StatusNotifierWatcher", 0, nullptr);
    server = std::thread([this] { Serve(); });
  }
  ~Watcher() {
    stop = true;
    server.join();
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

 private:
  void Serve() {
    while (!stop) {
      dbus_connection_read_write(connection, 10);
      while (DBusMessage* message = dbus_connection_pop_message(connection)) {
        if (dbus_message_is_method_call(message, DBUS_INTERFACE_PROPERTIES, "Get")) Answer(message);
        dbus_message_unref(message);
      }
    }
  }

  void Answer(DBusMessage* message) {
    DBusMessage* reply = dbus_message_new_method_return(message);
    DBusMessageIter outer;
    DBusMessageIter inner;
    dbus_message_iter_init_append(reply, &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, "b", &inner);
    dbus_message_iter_append_basic(&inner, DBUS_TYPE_BOOLEAN, &hasHost);
    dbus_message_iter_close_container(&outer, &inner);
    dbus_connection_send(connection, reply, nullptr);
    dbus_connection_flush(connection);
    dbus_message_unref(reply);
  }

  const dbus_bool_t hasHost;
  DBusConnection* connection = nullptr;
  std::atomic<bool> stop{false};
  std::thread server;
};

TEST(BusShowsIcons, SaysWhatTheWatcherOfTheBusSays) {
  for (const bool hasHost : {false, true}) {
    const Bus bus;
    ASSERT_NE(bus.Address(), "");
    const Variable address("DBUS_SESSION_BUS_ADDRESS", bus.Address().c_str());
    const Watcher watcher(bus.Address(), hasHost);
    EXPECT_EQ(BusShowsIcons(), hasHost);
  }
}

TEST(BusShowsIcons, IsFalseWithoutABusAndWithoutAHost) {
  const Variable runtime("XDG_RUNTIME_DIR");
  const Variable address("DBUS_SESSION_BUS_ADDRESS");
  EXPECT_FALSE(BusShowsIcons());
  address.Set("unix:path=/no/such/bus");
  EXPECT_FALSE(BusShowsIcons());
  const Bus bus;
  ASSERT_NE(bus.Address(), "");
  address.Set(bus.Address().c_str());
  EXPECT_FALSE(BusShowsIcons());
}

TEST(XServerShowsIcons, IsFalseWithoutAServer) {
  const Variable display("DISPLAY", ":4711");
  EXPECT_FALSE(XServerShowsIcons());
}

}  // namespace
}  // namespace platform
