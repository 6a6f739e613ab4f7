// The machine of the system that this is built for, and the classes of its groups: for whoever has
// no business with the differences.
#pragma once

#ifdef _WIN32
#include "app/platform/windows/windows_calls.h"
#include "app/platform/windows/windows_platform.h"
#else
#include "app/platform/linux/linux_calls.h"
#include "app/platform/linux/linux_platform.h"
#endif

namespace platform {

#ifdef _WIN32
using ThisMachine = WindowsPlatform;
using ThisClock = WindowsClock;
using ThisThreads = WindowsThreads;
using ThisTimers = WindowsTimers;
using ThisFiles = WindowsFiles;
using ThisSystem = WindowsSystem;
using ThisCalls = WindowsCalls;
#else
using ThisMachine = LinuxPlatform;
using ThisClock = LinuxClock;
using ThisThreads = LinuxThreads;
using ThisTimers = LinuxTimers;
using ThisFiles = LinuxFiles;
using ThisSystem = LinuxSystem;
using ThisCalls = LinuxCalls;
#endif

}  // namespace platform
