// The whole machine in memory. Time is virtual and moves only when every thread waits; threads are
// virtual and run one at a time, each until it waits. Of those due at the same millisecond the
// timer goes first, then the thread named "notification", then "repeat", then other threads in the
// order of their making, then the user interface, and last the one that made the Simulation: a
// test. The same calls give the same run. One Simulation at a time; it installs
// itself for its life. Its many methods hand out its parts and let time pass.
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
#include <memory>
#include <string>
#include <vector>

#include "app/platform/platform.h"
#include "app/platform/recording/simulated_device.h"
#include "app/platform/simulation/journal.h"
#include "app/platform/simulation/sent_event.h"
#include "app/platform/simulation/virtual_disk.h"
#include "app/platform/simulation/virtual_processes.h"
#include "app/platform/simulation/virtual_registry.h"

namespace platform::simulation {

class Scheduler;

// The log of calls and the planned faults are those of all operations but files, whose disk has its
// own.
class Simulation : public Journal {
 public:
  Simulation();
  ~Simulation();
  Simulation(const Simulation&) = delete;
  Simulation& operator=(const Simulation&) = delete;

  // The groups, to be installed with one of them replaced. Those of windows are null until
  // somebody adds them.
  const platform::Platform& Groups() const;
  // Borrowed: they stay behind the seam as long as this does.
  void AddGroups(Desktop& desktop, Controls& controls, Shell& shell);

  // What such groups are built on.
  simulation::Scheduler& Scheduler();
  simulation::Journal& Journal() { return *this; }

  // Virtual time in ms since the start. GetTickCount is the same plus an offset, 0 at first.
  std::uint64_t Now() const;
  void SetTickOffset(std::uint32_t offset);

  // Lets time pass on the calling (outermost) thread: everything due up to and at the end has run
  // on return. RunFor(0) runs what is due now.
  void RunFor(std::uint64_t ms);
  void RunUntil(std::uint64_t t);

  SimulatedDevice& AddDevice(const DeviceDescription& description);

  VirtualDisk& Disk();
  // Empty at first.
  VirtualRegistry& Registry();

  // Everything sent so far, and the same as lines of EventText, each ended by a line feed.
  const std::vector<SentEvent>& Events() const;
  std::string EventText() const;
  void ClearEvents();
  // Called with each event as it is sent, beside keeping it.
  void OnEvent(std::function<void(const SentEvent&)> listener);
  // Whether events are kept (they are at first); a long run does without.
  void KeepEvents(bool keep);

  void SetTimerLimits(std::uint32_t minMs, std::uint32_t maxMs);
  // Whether a timer that has nothing to do sleeps (it does at first).
  void LetTimersSleep(bool sleep);

  // Other programs.
  VirtualProcesses& Processes();

  // FormatMessageA's answer; before any call 2 and 5 have one.
  void SetSystemMessage(std::uint32_t code, const std::string& text);
  // At first "/home/player/.local/share".
  void SetUserDataFolder(const std::string& path);

  // Threads that have been made and not ended, the outermost not counted. Those that are left when
  // the Simulation ends are dropped where they stand, without unwinding.
  std::uint32_t LivingThreads() const;

  // What hasn't been given back: thread and event handles; DirectInput and device objects;
  // timeBeginPeriod without its timeEndPeriod.
  std::uint32_t OpenHandles() const;
  std::uint32_t OpenDeviceObjects() const;
  std::uint32_t OpenTimerPeriods() const;

 private:
  struct Machine;
  std::unique_ptr<Machine> machine;
};

}  // namespace platform::simulation
