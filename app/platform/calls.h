// How a running program is asked and steered by others of the same user: one side answers, any
// number of others call. What travels are messages, each of which comes whole or not at all. Who
// may call is the system's to know: only the programs of Kelvaro of the same user.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// One caller, as long as it is there; 0 is none. No two of one run are alike.
using CallId = std::uint32_t;

// Bytes; a longer one ends the call. An empty one can't be sent.
constexpr std::size_t kLongestMessage = 4096;

// How often arrivals are looked for where the system doesn't tell of them.
constexpr std::uint32_t kLookForArrivalsMs = 1000;

// The side that is called. All of it comes on one thread, which does nothing else.
class CallReceiver {
 public:
  virtual ~CallReceiver() = default;

  virtual void OnMessage(CallId call, const std::string& message) = 0;
  // There was no room for a message, and now there is some.
  virtual void OnRoom(CallId call) = 0;
  // The caller is gone.
  virtual void OnHungUp(CallId call) = 0;
  // Somebody called Wake, once or more.
  virtual void OnWake() = 0;
};

// The calling side, of one call. One thread at a time, but for End.
class Conversation {
 public:
  enum class Heard { Message, Nothing, End };

  virtual ~Conversation() = default;
  virtual bool Send(const std::string& message) = 0;
  // Waits `ms`, or for as long as it takes.
  virtual Heard Receive(std::string* message, std::optional<std::uint32_t> ms) = 0;
  // Hangs up: a Receive that waits just now, and each later one, has Heard::End. Any thread.
  virtual void End() = 0;
};

// Tells that programs begin to answer. One thread, but for End.
class Arrivals {
 public:
  virtual ~Arrivals() = default;
  // Waits until another one may have begun since this was made or the last call; who looks for it
  // then can call it. Comes too often rather than never. False once End was called.
  virtual bool Wait() = 0;
  virtual void End() = 0;  // any thread
};

class Calls {
 public:
  virtual ~Calls() = default;

  // Has callers' messages handed to `receiver`, until StopAnswering. False where nobody can call.
  virtual bool Answer(CallReceiver* receiver) = 0;
  // Waits for what the receiver is doing. Not on the receiver's thread. Nothing when nobody
  // answers.
  virtual void StopAnswering() = 0;

  // On the receiver's thread. Never waits. False, with nothing sent, while there is no room; a
  // caller that is gone swallows all.
  virtual bool Send(CallId call, const std::string& message) = 0;
  virtual void HangUp(CallId call) = 0;  // on the receiver's thread
  // Any thread, also after StopAnswering; never waits.
  virtual void Wake() = 0;

  // The processes that answer, in rising order.
  virtual std::vector<std::uint32_t> Answering() = 0;
  // Null when that one doesn't answer, or isn't one of Kelvaro's own.
  virtual std::unique_ptr<Conversation> Call(std::uint32_t process) = 0;
  // Null where nobody can be called.
  virtual std::unique_ptr<Arrivals> WatchArrivals() = 0;
};

// Of the installed platform; see platform.h. Where there is none, one that nobody can call.
Calls& calls();

}  // namespace platform
