// A device that is only looked at.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/platform/recording/recording.h"
#include "device/device_manager.h"

namespace kelvaro::console {

class DeviceWatch {
 public:
  // Gets each changed state with its time in ms, on the notification thread.
  using Visit = std::function<void(std::uint64_t t, const platform::DIJOYSTATE2& state)>;

  DeviceWatch() : manager(platform::kNoWindow) {}
  ~DeviceWatch() { manager.StopDevice(); }

  // Before Begin: a state for each report of the device, at most one in a millisecond, in place of
  // one for each 5 ms.
  void SeeEachReport() { eachReport = true; }

  // Takes the device of that name, or the only one that is there; times count from here. False,
  // with *error in words, when there is none.
  bool Begin(const std::optional<std::string>& name, Visit visitor, std::string* error);

  // ms since Begin
  std::uint64_t Elapsed() const;

  // The device, after Begin.
  platform::DeviceDescription Description() const;

 private:
  static void OnChange(DeviceManager*, const platform::DIJOYSTATE2* state, void* self);

  Visit visit;
  std::uint32_t begin = 0;
  bool eachReport = false;
  DeviceManager manager;
};

}  // namespace kelvaro::console
