// What commands that ask running programs need behind the seam, installed for the life of the
// object.
#pragma once

#include "app/platform/platform.h"
#ifndef _WIN32
#include "app/platform/linux/linux_calls.h"
#endif

namespace kelvaro::console {

class CallsMachine {
 public:
  CallsMachine() : installed(Groups()) {}
  CallsMachine(const CallsMachine&) = delete;
  CallsMachine& operator=(const CallsMachine&) = delete;

 private:
  platform::Platform Groups() {
    platform::Platform groups;
#ifndef _WIN32  // where nobody can be called yet
    groups.calls = &calls;
#endif
    return groups;
  }

#ifndef _WIN32
  platform::LinuxCalls calls;
#endif
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro::console
