// DirectInput 8, bound by name, so that the program starts where there is none and can say so.
#pragma once

#include <cstdint>

#include "app/platform/devices.h"

namespace platform {

class WindowsDevices final : public Devices {
 public:
  // A device that tells nothing is asked so often. Not each loss of one is told of.
  static constexpr std::uint32_t kLookMs = 1000;
  explicit WindowsDevices(std::uint32_t lookMs = kLookMs) : lookMs(lookMs) {}

  // Besides DirectInput's own results, the system's error for a library that isn't there.
  HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) override;

 private:
  std::uint32_t lookMs;
};

}  // namespace platform
