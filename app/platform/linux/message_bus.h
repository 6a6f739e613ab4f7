// A connection to a message bus of D-Bus, made at the first question and given up once the bus or
// the service asked doesn't answer. No question waits longer than a second. One thread at a time.
#pragma once

#include <functional>
#include <string>

struct DBusConnection;
struct DBusMessage;

namespace platform {

class MessageBus {
 public:
  // `address` in D-Bus's form.
  explicit MessageBus(std::string address);
  ~MessageBus();
  MessageBus(const MessageBus&) = delete;
  MessageBus& operator=(const MessageBus&) = delete;

  // False once it was given up.
  bool Connect();
  // The reply, to be given back with dbus_message_unref; null on failure; after any but a refusal
  // by the service nothing is asked any more. Takes over `request`, which may be null. To be called
  // when Connect has succeeded.
  DBusMessage* Ask(DBusMessage* request);
  // Sets *value, of D-Bus's basic type `type`, to a property of the service that has the name
  // `interface`. False, with *value untouched, when it can't be told.
  bool ReadProperty(const char* interface, const char* path, const char* property, bool start,
                    int type, void* value);

  // The name that others reach this connection by; empty while not connected.
  std::string OwnName() const;
  // Once connected: has `take` called with each message that is no reply, while something is asked
  // and in Receive; true where it is dealt with. A call is then answered with nothing.
  void Listen(std::function<bool(DBusMessage*)> take);
  // Readable when there may be messages; -1 while not connected.
  int Watched() const;
  // Takes in the messages that have come. False once the bus has ended.
  bool Receive();

 private:
  const std::string address;
  DBusConnection* connection = nullptr;
  bool givenUp = false;
  std::function<bool(DBusMessage*)> listener;
};

// Of the environment, else the usual ones; empty where there is no session's.
std::string SystemBusAddress();
std::string SessionBusAddress();

}  // namespace platform
