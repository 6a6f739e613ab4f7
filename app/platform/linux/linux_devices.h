// The directory of game devices. Devices are listed by the kernel's event number; one that the user
// may not open isn't listed.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "app/platform/devices.h"
#include "app/platform/linux/linux_device.h"

namespace platform {

class LinuxDevices : public Devices {
 public:
  // The machine's own.
  LinuxDevices();
  // Others, under a clock of their own (ms).
  LinuxDevices(std::unique_ptr<DeviceNodes> nodes, std::function<std::int64_t()> nowMs);

  HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) override;

  // Where the listed device with that identity is; nothing if it isn't attached any more.
  std::optional<NodePlace> PlaceOf(const GUID& identity);

 private:
  // Outlives this object where a directory or a device still uses it.
  const std::shared_ptr<DeviceSource> source;
};

}  // namespace platform
