// A game pad that this program makes in the kernel, through uinput, for all programs of the
// machine. It is there for the life of the object; when that goes, or the process ends in whatever
// way, the kernel takes it away. One thread at a time.
#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>

#include "app/platform/linux/device_layout.h"
#include "app/platform/linux/uinput_device.h"

namespace platform {

struct VirtualPadShape {
  std::string name;
  std::uint32_t buttons = 0;     // 0 to kButtonSlots
  std::bitset<kAxisSlots> axes;  // by their slots; a second slider brings the first along
  std::uint32_t hats = 0;        // 0 to kHatSlots
};

// What the kernel says of a pad of that shape. Laid out it gives the shape back.
DeviceFacts FactsOf(const VirtualPadShape& shape);

class VirtualPad {
 public:
  // Axes run from -kAxisEnd to kAxisEnd.
  static constexpr std::int32_t kAxisEnd = 32000;

  // All at rest. Null on failure, with the errno value in *errorCode.
  static std::unique_ptr<VirtualPad> Open(const VirtualPadShape& shape, int* errorCode);

  // One report of what isn't as it was in the state sent before. Slots that the shape lacks are
  // passed over, and values beyond the ends are the ends. False, with *errorCode, where the kernel
  // doesn't take it.
  bool Send(const DIJOYSTATE2& state, int* errorCode);

 private:
  VirtualPad(const DeviceFacts& facts, UinputDevice device);

  const DeviceLayout layout;
  const UinputDevice device;
};

}  // namespace platform
