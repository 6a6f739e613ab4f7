// Linux behind the seam: owns one object for each group of operations. A program makes one at its
// start, opens what it needs, and installs Groups().
#pragma once

#include "app/platform/linux/linux_clock.h"
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

  // Pointers into this object.
  const Platform& Groups() const { return groups; }

 private:
  LinuxClock clock;
  LinuxThreads threads;
  LinuxTimers timers;  // gone before what its callbacks use
  LinuxSystem system;
  NoDesktop desktop;
  Platform groups;
};

}  // namespace platform
