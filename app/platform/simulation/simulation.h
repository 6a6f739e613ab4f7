// The whole machine in memory. Time is virtual and moves only when every thread waits; threads are
// virtual and run one at a time, each until it waits. Of those due at the same millisecond the
// timer goes first, then the thread named "notification", then "repeat", then other threads in the
// order of their making, and last the one that made the Simulation: the user interface, or a test.
// The same calls give the same run. One Simulation at a time; it installs itself for its life.
//
// A test presses, waits and looks:
//
//   Simulation sim;
//   SimulatedDevice& pad = sim.AddDevice({});
//   ... select the device, attach an engine ...
//   pad.Press({1});
//   sim.RunFor(10);
//   EXPECT_EQ(sim.EventText(), "...");
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/simulation/recording.h"

namespace platform::simulation {

// One event that was sent, as it was given.
struct SentEvent {
  enum class Kind { Key, Mouse };
  std::uint64_t t = 0;  // ms since the start of the Simulation
  Kind kind = Kind::Key;
  std::uint32_t flags = 0;
  std::uint8_t vk = 0;    // keys
  std::uint8_t scan = 0;  // keys
  std::int32_t dx = 0;    // mouse
  std::int32_t dy = 0;
  std::int32_t data = 0;
  friend bool operator==(const SentEvent&, const SentEvent&) = default;
};

// "120 key 41 1e 0" (vk and scan in hexadecimal, flags decimal), "120 mouse 1 4 -1 0" (flags, dx,
// dy, data, decimal).
std::string EventText(const SentEvent& event);

struct ShownMessageBox {
  WindowHandle owner = 0;
  std::string text;
  std::string caption;
  std::uint32_t type = 0;
};

// A device that a test or a recording plays. It stays attached until it is unplugged.
class SimulatedDevice {
 public:
  virtual ~SimulatedDevice() = default;

  // Changes that count from now on. Press names all buttons that are held, from 1.
  virtual void Press(std::initializer_list<std::uint32_t> buttons) = 0;
  virtual void MoveAxis(const std::string& axis, std::int32_t value) = 0;  // "Axis_X0"
  virtual void PointHat(std::uint32_t hat, std::uint32_t angle) = 0;       // kPovCentred for none
  virtual void Lose() = 0;                                                 // answers no more
  virtual void Return() = 0;                                               // answers again
  virtual void Change(const StateChange& change) = 0;                      // its time is ignored

  // A change at a time of the Simulation, now or later.
  virtual void ChangeAt(std::uint64_t t, const StateChange& change) = 0;
  // Plays the changes, with times that count from the device's first Acquire.
  virtual void Play(const std::vector<StateChange>& changes) = 0;

  // Out of, and back in, the list of attached devices; an open one is lost meanwhile.
  virtual void Unplug() = 0;
  virtual void PlugIn() = 0;

  virtual const DIJOYSTATE2& State() const = 0;
  virtual const DeviceDescription& Description() const = 0;
};

class Simulation {
 public:
  Simulation();
  ~Simulation();
  Simulation(const Simulation&) = delete;
  Simulation& operator=(const Simulation&) = delete;

  // The groups, to be installed with one of them replaced.
  const platform::Platform& Groups() const;

  // Virtual time in ms since the start. GetTickCount is the same plus an offset, 0 at first.
  std::uint64_t Now() const;
  void SetTickOffset(std::uint32_t offset);

  // Lets time pass on the calling (outermost) thread: everything due up to and at the end has run
  // on return. RunFor(0) runs what is due now.
  void RunFor(std::uint64_t ms);
  void RunUntil(std::uint64_t t);

  SimulatedDevice& AddDevice(const DeviceDescription& description);

  // Everything sent so far, and the same as lines of EventText, each ended by a line feed.
  const std::vector<SentEvent>& Events() const;
  std::string EventText() const;
  void ClearEvents();
  // Called with each event as it is sent, beside keeping it.
  void OnEvent(std::function<void(const SentEvent&)> listener);
  // Whether events are kept (they are at first); a long run does without.
  void KeepEvents(bool keep);

  // Operations in the order in which they were called, as "Name" or "Name argument": those of
  // devices, of timers, and of threads and events except waits. Kept only after LogCalls(true).
  void LogCalls(bool log);
  const std::vector<std::string>& Calls() const;
  void ClearCalls();

  // The next `times` calls of that operation ("CreateThread", "timeSetEvent", "SetDataFormat",
  // "GetDeviceState", ...) fail; an operation with a result code gives `result`.
  void FailNext(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM,
                std::uint32_t times = 1);
  // So does every call from then on, until Mend.
  void FailAlways(const std::string& operation, HRESULT result = DIERR_INVALIDPARAM);
  void Mend(const std::string& operation);

  void SetTimerLimits(std::uint32_t minMs, std::uint32_t maxMs);

  // What the next message boxes are answered with, in order; an unforeseen box gets 0.
  void AnswerMessageBox(std::int32_t button);
  const std::vector<ShownMessageBox>& MessageBoxes() const;

  // Threads that have been made and not ended, the outermost not counted.
  std::uint32_t LivingThreads() const;

 private:
  struct Machine;
  std::unique_ptr<Machine> machine;
};

}  // namespace platform::simulation
