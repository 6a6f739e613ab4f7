// The machine's own event devices, by libudev and libevdev, without those of which a rule of udev's
// says ID_INPUT_JOYSTICK=0. Works without a running udevd too: the list then comes from /sys alone
// and news straight from the kernel.
#pragma once

#include <memory>
#include <vector>

#include "app/platform/linux/device_nodes.h"

namespace platform {

class UdevNodes : public DeviceNodes {
 public:
  std::vector<NodePlace> List() override;
  std::unique_ptr<DeviceNode> Open(const NodePlace& place, int* errorCode) override;
  std::unique_ptr<NodeWatch> Watch() override;
};

}  // namespace platform
