#include "app/platform/linux/icon_area.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/host/files.h"
#include "tests/platform/linux/bus_service.h"
#include "tests/platform/linux/own_bus.h"

namespace platform {
namespace {

using kelvaro::tests::Variable;

// The service that programs offer their icons to.
class Watcher {
 public:
  Watcher(const std::string& address, bool hasHost)
      : hasHost(hasHost ? TRUE : FALSE),
        service(address, "org.kde.StatusNotifierWatcher",
                [this](DBusMessage* message) { Answer(message); }) {}
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

 private:
  void Answer(DBusMessage* message) {
    if (!dbus_message_is_method_call(message, DBUS_INTERFACE_PROPERTIES, "Get")) return;
    DBusMessage* reply = dbus_message_new_method_return(message);
    DBusMessageIter outer;
    DBusMessageIter inner;
    dbus_message_iter_init_append(reply, &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, "b", &inner);
    dbus_message_iter_append_basic(&inner, DBUS_TYPE_BOOLEAN, &hasHost);
    dbus_message_iter_close_container(&outer, &inner);
    service.Send(reply);
    dbus_message_unref(reply);
  }

  const dbus_bool_t hasHost;
  BusService service;
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
