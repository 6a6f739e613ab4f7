// What commands that ask running programs need behind the seam, installed for the life of the
// object.
#pragma once

#include "app/platform/machine/this_machine.h"
#include "app/platform/platform.h"

namespace kelvaro::console {

class CallsMachine {
 public:
  CallsMachine() : installed(Groups()) {}
  CallsMachine(const CallsMachine&) = delete;
  CallsMachine& operator=(const CallsMachine&) = delete;

 private:
  platform::Platform Groups() {
    platform::Platform groups;
    groups.calls = &calls;
    return groups;
  }

  platform::ThisCalls calls;
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro::console
