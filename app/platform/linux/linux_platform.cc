#include "app/platform/linux/linux_platform.h"

namespace platform {

LinuxPlatform::LinuxPlatform() {
  groups.clock = &clock;
  groups.threads = &threads;
  groups.timers = &timers;
  groups.devices = &devices;
  groups.files = &files;
  groups.system = &system;
}

bool LinuxPlatform::OpenInput(InputChoice choice, std::string* error) {
  input = OpenLinuxInput(choice, error);
  groups.input = input.get();
  return input != nullptr;
}

}  // namespace platform
