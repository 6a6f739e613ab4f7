// Prints what running programs tell, each on a thread of its own, as lines of JSON.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <thread>

#include "console/commands.h"
#include "console/steering/steered_instances.h"

namespace kelvaro::console {

class EventFollower {
 public:
  // Asks for a stop (StopSignals::Ask) once nothing can be printed any more; if `untilGone`, also
  // once one that was followed has ended or can't be.
  EventFollower(Streams streams, bool untilGone) : streams(streams), untilGone(untilGone) {}
  ~EventFollower() { End(); }
  EventFollower(const EventFollower&) = delete;
  EventFollower& operator=(const EventFollower&) = delete;

  // The next two on one thread at a time. One that doesn't do it is complained of.
  void Follow(std::uint32_t process);
  // Those that answer and aren't followed. Whether there are any that are, or will be.
  bool FollowAll();

  // Waits until nothing is printed any more. Whether all did what they were asked.
  bool End();

 private:
  struct Followed {
    std::thread thread;
    platform::Conversation* conversation = nullptr;  // while it tells
    bool over = false;
  };

  void Listen(std::uint32_t process, Followed* one);
  void PrintEvents(InstanceAnswer& asked);
  bool Print(std::uint32_t process, const SteeringMessage& event);
  void Stop();  // under the mutex

  const Streams streams;
  const bool untilGone;
  std::mutex mutex;  // of all that follows, and of what is printed
  std::map<std::uint32_t, Followed> followed;
  bool ending = false;
  bool allDone = true;
};

}  // namespace kelvaro::console
