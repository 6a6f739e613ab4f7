// The DirectInput-shaped operations over devices that are scripted or recorded. Shared by the
// simulation and by recorded devices under a real clock, so that both behave the same. A device may
// be polled on another system thread than the one that made it.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "app/platform/devices.h"
#include "app/platform/recording/simulated_device.h"

namespace platform {

class ScriptedDevice;
class OpenDevice;

class DeviceDirectory : public Devices, private DirectInput {
 public:
  // Hears of each call, with its arguments, before it is carried out. If it gives a result, that is
  // the call's: a failure comes instead of carrying the call out, a success after it.
  using BeforeCall = std::function<std::optional<HRESULT>(std::string_view operation,
                                                          std::initializer_list<std::int64_t>)>;

  // `now` tells the time in ms, never falling; it is called with the directory locked. `changed` is
  // told when a device changes: a time that has come for one that was changed by hand, and the
  // next planned change. Where nobody hears of it there is nothing to wait for before a poll.
  explicit DeviceDirectory(std::function<std::uint64_t()> now, BeforeCall beforeCall = nullptr,
                           std::function<void(std::uint64_t byTime)> changed = nullptr);
  ~DeviceDirectory() override;

  // The device lives as long as this.
  SimulatedDevice& Add(const DeviceDescription& description);

  HRESULT DirectInput8Create(std::uint32_t version, DirectInput** directInput) override;

  // DirectInput and device objects that haven't been released.
  std::uint32_t OpenObjects() const;

 private:
  friend class OpenDevice;
  friend class ScriptedDevice;

  HRESULT EnumDevices(std::uint32_t deviceClass,
                      const std::function<bool(const DIDEVICEINSTANCE&)>& visit,
                      std::uint32_t flags) override;
  HRESULT CreateDevice(const GUID& instance, DirectInputDevice** device) override;
  void Release() override;

  void Forget(OpenDevice* device);

  std::optional<HRESULT> Enter(std::string_view operation,
                               std::initializer_list<std::int64_t> arguments = {}) {
    return beforeCall ? beforeCall(operation, arguments) : std::nullopt;
  }

  const std::function<std::uint64_t()> now;
  const BeforeCall beforeCall;
  const std::function<void(std::uint64_t byTime)> changed;
  mutable std::mutex guard;  // of all below, and of the devices
  std::uint32_t openDirectories = 0;
  std::list<ScriptedDevice> devices;
  std::vector<std::unique_ptr<OpenDevice>> open;
};

}  // namespace platform
