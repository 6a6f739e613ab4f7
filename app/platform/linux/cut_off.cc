#include "app/platform/linux/cut_off.h"

#include <unistd.h>

namespace platform {

constinit thread_local const std::atomic<bool>* cutOffFlag = nullptr;

void ParkForever() {
  for (;;) pause();
}

}  // namespace platform
