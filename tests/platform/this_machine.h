// The platform of the machine on which the tests run.
#pragma once

#ifdef _WIN32
#include "app/platform/windows/windows_platform.h"
#else
#include "app/platform/linux/linux_platform.h"
#endif

namespace platform {

#ifdef _WIN32
using ThisMachine = WindowsPlatform;
#else
using ThisMachine = LinuxPlatform;
#endif

}  // namespace platform
