// Linux behind the seam: owns one object for each group of operations but those of a program with a
// window, which adds them: the registry (settings/sqlite_registry.h), processes and what is seen
// (../qt/). A program makes one at its start, opens what it needs, and installs Groups().
#pragma once

#include <memory>
#include <string>

#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/linux_devices.h"
#include "app/platform/linux/linux_files.h"
#include "app/platform/linux/linux_input.h"
#include "app/platform/linux/linux_system.h"
#include "app/platform/linux/linux_threads.h"
#include "app/platform/linux/linux_timers.h"
#include "app/platform/platform.h"

namespace platform {

class LinuxPlatform {
 public:
  LinuxPlatform();
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;

  // Fills Groups().input; before Groups() is installed. False, with the reason in *error and no
  // input, where nothing works.
  bool OpenInput(InputChoice choice, std::string* error);
  // Null until it is open.
  LinuxInput* Sender() { return input.get(); }

  LinuxDevices& GameDevices() { return devices; }

  // Pointers into this object.
  const Platform& Groups() const { return groups; }

 private:
  LinuxClock clock;
  LinuxThreads threads;
  LinuxDevices devices;
  std::unique_ptr<LinuxInput> input;
  LinuxTimers timers;  // ends its calls before what they use goes
  LinuxFiles files;
  LinuxSystem system;
  Platform groups;
};

}  // namespace platform
