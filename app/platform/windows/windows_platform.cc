#include "app/platform/windows/windows_platform.h"

namespace platform {

WindowsPlatform::WindowsPlatform() {
  groups.clock = &clock;
  groups.threads = &threads;
  groups.input = &input;
}

}  // namespace platform
