// The seam between the logic and the machine. A Platform hands out one object for each group of
// operations, so that any of them can be replaced alone: recorded devices under the real clock,
// say. A program installs one at its start, a test a fresh one each. The function beside each
// interface (clock(), threads() ...) hands out the installed group. Ask it anew for each operation
// and keep no reference: it is where a thread that was ended by force stops. Any thread.
#pragma once

#include "app/platform/calls.h"
#include "app/platform/clock.h"
#include "app/platform/controls.h"
#include "app/platform/desktop.h"
#include "app/platform/devices.h"
#include "app/platform/files.h"
#include "app/platform/input.h"
#include "app/platform/processes.h"
#include "app/platform/registry.h"
#include "app/platform/shell.h"
#include "app/platform/threads.h"
#include "app/platform/timers.h"

namespace platform {

// Borrowed pointers; a group that a program has no use for may be null, and is then never called;
// but `calls`, which then are none.
struct Platform {
  Clock* clock = nullptr;
  Threads* threads = nullptr;
  Timers* timers = nullptr;
  Devices* devices = nullptr;
  Input* input = nullptr;
  Files* files = nullptr;
  System* system = nullptr;
  Registry* registry = nullptr;
  Desktop* desktop = nullptr;
  Controls* controls = nullptr;
  Shell* shell = nullptr;
  Processes* processes = nullptr;
  Calls* calls = nullptr;
};

// Installs `platform` for the life of this object, and the previous one again after it. Not to be
// done while another thread runs through the seam.
class InstalledPlatform {
 public:
  explicit InstalledPlatform(const Platform& platform);
  ~InstalledPlatform();
  InstalledPlatform(const InstalledPlatform&) = delete;
  InstalledPlatform& operator=(const InstalledPlatform&) = delete;

 private:
  Platform previous;
};

}  // namespace platform
