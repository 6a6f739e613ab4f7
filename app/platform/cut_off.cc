#include "app/platform/cut_off.h"

namespace platform {

constinit thread_local const std::atomic<bool>* cutOffFlag = nullptr;

void ParkForever() {
  for (;;) cutOffFlag->wait(true);
}

}  // namespace platform
