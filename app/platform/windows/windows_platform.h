// Windows behind the seam: owns one object for each group of operations but what is seen, which
// ui/ adds. A program makes one at its start and installs Groups().
#pragma once

#include "app/platform/platform.h"
#include "app/platform/windows/windows_clock.h"
#include "app/platform/windows/windows_devices.h"
#include "app/platform/windows/windows_files.h"
#include "app/platform/windows/windows_input.h"
#include "app/platform/windows/windows_processes.h"
#include "app/platform/windows/windows_registry.h"
#include "app/platform/windows/windows_system.h"
#include "app/platform/windows/windows_threads.h"
#include "app/platform/windows/windows_timers.h"

namespace platform {

class WindowsPlatform {
 public:
  WindowsPlatform();
  WindowsPlatform(const WindowsPlatform&) = delete;
  WindowsPlatform& operator=(const WindowsPlatform&) = delete;

  // Pointers into this object.
  const Platform& Groups() const { return groups; }

 private:
  WindowsClock clock;
  WindowsThreads threads;
  WindowsDevices devices;
  WindowsInput input;
  WindowsTimers timers;  // ends its calls before what they use goes
  WindowsFiles files;
  WindowsSystem system;
  WindowsRegistry registry;
  WindowsProcesses processes;
  Platform groups;
};

}  // namespace platform
