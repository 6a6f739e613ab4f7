// DirectInput 8, bound by name, so that the program starts where there is none and can say so.
#pragma once

#include <cstdint>

#include "app/platform/devices.h"

namespace platform {

class WindowsDevices final : public Devices {
 public:
  // Besides DirectInput's own results, the system's error for a library that isn't there.
  HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) override;
};

}  // namespace platform
