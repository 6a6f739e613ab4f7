#include "app/platform/linux/message_bus.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "tests/host/files.h"
#include "tests/host/patience.h"
#include "tests/platform/linux/own_bus.h"

namespace platform {
namespace {

using kelvaro::tests::Variable;

TEST(SystemBusAddress, IsThatOfTheEnvironmentElseTheUsualOne) {
  const Variable address("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/some/bus");
  EXPECT_EQ(SystemBusAddress(), "unix:path=/some/bus");
  address.Set("");
  EXPECT_EQ(SystemBusAddress(), "unix:path=/var/run/dbus/system_bus_socket");
  address.Set(nullptr);
  EXPECT_EQ(SystemBusAddress(), "unix:path=/var/run/dbus/system_bus_socket");
}

TEST(SessionBusAddress, IsThatOfTheEnvironmentElseTheRuntimeFoldersIfThereIsOne) {
  const Variable address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/some/bus");
  const Variable runtime("XDG_RUNTIME_DIR", "/run/user/7");
  EXPECT_EQ(SessionBusAddress(), "unix:path=/some/bus");
  address.Set(nullptr);
  EXPECT_EQ(SessionBusAddress(), "unix:path=/run/user/7/bus");
  runtime.Set(nullptr);
  EXPECT_EQ(SessionBusAddress(), "");
}

TEST(MessageBus, AsksNothingMoreOnceNobodyAnswers) {
  const Bus daemon;
  ASSERT_NE(daemon.Address(), "");
  MessageBus bus(daemon.Address());
  ASSERT_TRUE(bus.Connect());
  dbus_bool_t value = TRUE;
  EXPECT_FALSE(bus.ReadProperty("no.such.Service", "/", "Any", false, DBUS_TYPE_BOOLEAN, &value));
  EXPECT_EQ(value, TRUE);
  EXPECT_FALSE(bus.Connect());
}

TEST(MessageBus, APropertyOfAnotherTypeIsNone) {
  const Bus daemon;
  ASSERT_NE(daemon.Address(), "");
  MessageBus bus(daemon.Address());
  dbus_bool_t value = TRUE;
  // A list of texts.
  EXPECT_FALSE(bus.ReadProperty(DBUS_INTERFACE_DBUS, DBUS_PATH_DBUS, "Features", false,
                                DBUS_TYPE_BOOLEAN, &value));
  EXPECT_EQ(value, TRUE);
}

TEST(MessageBus, ThatIsNotThereIsNotConnected) {
  MessageBus bus("unix:path=/no/such/bus");
  EXPECT_FALSE(bus.Connect());
  EXPECT_FALSE(bus.Connect());
}

TEST(MessageBus, HearsWhatOthersCallByItsName) {
  const Bus daemon;
  ASSERT_NE(daemon.Address(), "");
  MessageBus called(daemon.Address());
  EXPECT_EQ(called.OwnName(), "");
  EXPECT_EQ(called.Watched(), -1);
  ASSERT_TRUE(called.Connect());
  EXPECT_GE(called.Watched(), 0);
  std::string heard;
  called.Listen([&heard](DBusMessage* message) {
    heard = dbus_message_get_member(message);
    return true;
  });
  std::thread caller([&] {
    MessageBus bus(daemon.Address());
    if (!bus.Connect()) return;
    DBusMessage* const answer = bus.Ask(
        dbus_message_new_method_call(called.OwnName().c_str(), "/", "some.Interface", "Told"));
    if (answer) dbus_message_unref(answer);
  });
  EXPECT_TRUE(kelvaro::tests::Eventually([&] { return called.Receive() && heard == "Told"; }));
  caller.join();
}

TEST(MessageBus, SaysWhenItHasEnded) {
  Bus daemon;
  ASSERT_NE(daemon.Address(), "");
  MessageBus bus(daemon.Address());
  ASSERT_TRUE(bus.Connect());
  EXPECT_TRUE(bus.Receive());
  daemon.Stop();
  EXPECT_TRUE(kelvaro::tests::Eventually([&] { return !bus.Receive(); }));
}

}  // namespace
}  // namespace platform
