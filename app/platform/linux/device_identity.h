// The 16 bytes by which a device is known again: after it was pulled out, at the next start, and in
// a profile.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "app/platform/direct_input.h"
#include "app/platform/linux/device_facts.h"

namespace platform {

// Bus and vendor, product, version; then a hash of the serial number, or of the port where there is
// none, or of the name where there is neither. `ordinal` tells devices apart that agree in all of
// that; 0 adds nothing. Stored in profiles: never to be changed.
GUID DeviceIdentity(const DeviceIds& ids, std::uint32_t ordinal);

// The published identity of the make: product and vendor, and the bytes "PIDVID".
GUID ProductIdentity(const DeviceIds& ids);

// Deals out the ordinals. A device keeps the one it got while it is attached, whatever others come
// and go; a newcomer gets the lowest that is free. Devices are told apart by their place
// in the system, which is never used again while the machine runs. Any thread.
class IdentityTable {
 public:
  GUID Assign(const std::string& place, const DeviceIds& ids);
  // Forgets all other places.
  void KeepOnly(const std::vector<std::string>& places);

 private:
  struct Entry {
    GUID base;
    std::uint32_t ordinal;
  };

  std::mutex mutex;
  std::map<std::string, Entry> entries;  // guarded by mutex
};

}  // namespace platform
