#include "app/platform/windows/windows_platform.h"

namespace platform {

WindowsPlatform::WindowsPlatform() {
  groups.clock = &clock;
  groups.threads = &threads;
  groups.timers = &timers;
  groups.devices = &devices;
  groups.input = &input;
  groups.files = &files;
  groups.system = &system;
  groups.registry = &registry;
  groups.processes = &processes;
}

}  // namespace platform
