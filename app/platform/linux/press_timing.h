// How long it takes from a press on a pad to the key that comes of it, and which taps give no key:
// the presses, a reader of the keys, and the least that any program can do. Times are microseconds
// of CLOCK_MONOTONIC.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/platform/linux/descriptor.h"

namespace platform {

// Where the keys of presses arrive. One thread at a time.
class KeyArrivals {
 public:
  struct Key {
    bool down = false;
    std::int64_t sentUs = 0;  // the kernel's time of the event
    std::int64_t seenUs = 0;  // when somebody who waited for it had it
  };

  virtual ~KeyArrivals() = default;

  // Takes the first key event that goes this way, and forgets those before it. Nothing once `limit`
  // is over.
  virtual std::optional<Key> Next(bool down, std::chrono::milliseconds limit) = 0;
  virtual void Forget() = 0;
};

// Reads a keyboard's node on a thread of its own, which waits for each key. The node is grabbed: no
// other program gets the keys.
class KeyWatch final : public KeyArrivals {
 public:
  // Null on failure, with the errno value in *errorCode: EBUSY where another program has grabbed
  // the keyboard.
  static std::unique_ptr<KeyWatch> Open(const std::string& node, int* errorCode);
  ~KeyWatch() override;
  KeyWatch(const KeyWatch&) = delete;
  KeyWatch& operator=(const KeyWatch&) = delete;

  std::optional<Key> Next(bool down, std::chrono::milliseconds limit) override;
  void Forget() override;
  // That went down and haven't been taken or forgotten.
  int Downs();

 private:
  explicit KeyWatch(Descriptor node);
  void Collect();

  const Descriptor node;
  const Descriptor stop;  // readable when the thread is to end
  std::mutex mutex;       // of `keys`
  std::condition_variable arrived;
  std::vector<Key> keys;
  std::thread thread;
};

// A process that does nothing but wait for one button of a pad and send one key. It ends with the
// object, and with its maker.
class Forwarder {
 public:
  // `from` is the pad's node, to be opened and grabbed; `to` the device of the key. Null on
  // failure, with the errno value.
  static std::unique_ptr<Forwarder> Start(const std::string& from, int button, int to, int key,
                                          int* errorCode);
  ~Forwarder();
  Forwarder(const Forwarder&) = delete;
  Forwarder& operator=(const Forwarder&) = delete;

 private:
  explicit Forwarder(pid_t child) : child(child) {}

  const pid_t child;
};

// Makes the pad report its button as down or up; false where the kernel doesn't take it.
using PressButton = std::function<bool(bool down)>;

struct PressPlan {
  int intervalUs = 1000;  // of the polls, over whose phases the presses are spread
  int presses = 1000;
  int warmUp = 30;     // presses before them, which don't count
  int gapUs = 25000;   // from one key to the next change of the button, at least
  int limitMs = 2000;  // after which a key counts as lost
};

// From just before each press on.
struct PressTimes {
  std::vector<double> sent;  // until the kernel has the key
  std::vector<double> seen;  // until a thread that waits for it has read it
  int lost = 0;
};

// The presses come in random order at evenly spread phases of the interval: the median then doesn't
// depend on luck. Ends early, with what it has so far, as soon as `goOn` says no or the pad fails.
PressTimes TimePresses(const PressButton& press, KeyArrivals& keys, const PressPlan& plan,
                       const std::function<bool()>& goOn);

// How many of `taps` of 1 to 4 ms, at random phases of the interval, gave no key. Nothing where
// `goOn` said no or the pad fails.
std::optional<int> CountLostTaps(const PressButton& press, KeyWatch& keys, int intervalUs, int taps,
                                 const std::function<bool()>& goOn);

}  // namespace platform
