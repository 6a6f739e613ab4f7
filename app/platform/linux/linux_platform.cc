#include "app/platform/linux/linux_platform.h"

namespace platform {

LinuxPlatform::LinuxPlatform() {
  groups.clock = &clock;
  groups.threads = &threads;
  groups.timers = &timers;
  groups.system = &system;
  groups.desktop = &desktop;
}

}  // namespace platform
