// A game pad that this program makes in the kernel, through uinput, for all programs of the
// machine. It is there for the life of the object; when that goes, or the process ends in whatever
// way, the kernel takes it away. One thread at a time.
#pragma once

#include <linux/input.h>

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

  // The state as one report, of which the kernel drops what is as it was. Slots that the shape
  // lacks are passed over, and values beyond the ends are the ends.
  std::vector<input_event> ReportOf(const DIJOYSTATE2& state) const;
  // One system call. False, with *errorCode, where the kernel doesn't take it.
  bool Send(const std::vector<input_event>& report, int* errorCode);

  // Where it shows up, such as "/dev/input/event7"; empty if that can't be told.
  std::string Node() const { return NodeOf(device); }

 private:
  VirtualPad(const DeviceFacts& facts, UinputDevice device);

  const DeviceLayout layout;
  const UinputDevice device;
};

}  // namespace platform
