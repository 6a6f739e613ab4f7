// Which of the attached devices a command works on.
#pragma once

#include <optional>
#include <string>

#include "device/device_manager.h"

namespace kelvaro::console {

// By name if one is given, or the beginning of only one; otherwise by identity, otherwise by the
// name that goes with it; with none of them the only device that is there.
struct DeviceChoice {
  std::optional<std::string> name;
  platform::GUID profileGuid;
  ByteString profileName;
};

// Looks whether the device is plugged in, without opening it. False, with *error as below.
bool HasChosenDevice(const DeviceChoice& choice, std::string* error);

// Selects the device, which runs then. False, with *error in words that list what is there.
bool SelectChosenDevice(DeviceManager* manager, const DeviceChoice& choice, std::string* error);

}  // namespace kelvaro::console
