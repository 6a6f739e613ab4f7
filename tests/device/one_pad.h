// One device named "Pad" that agrees to everything, for tests that the simulated machine isn't made
// for, such as those on real threads. A test derives from it and says what a poll finds.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>

#include "app/platform/devices.h"

namespace kelvaro::test {

struct OnePad : platform::Devices, platform::DirectInput, platform::DirectInputDevice {
  platform::HRESULT DirectInput8Create(std::uint32_t,
                                       platform::DirectInput** directInput) override {
    *directInput = this;
    return platform::DI_OK;
  }
  platform::HRESULT EnumDevices(std::uint32_t,
                                const std::function<bool(const platform::DIDEVICEINSTANCE&)>& visit,
                                std::uint32_t) override {
    platform::DIDEVICEINSTANCE instance;
    instance.guidInstance.Data1 = 1;
    std::strcpy(instance.tszInstanceName, "Pad");
    visit(instance);
    return platform::DI_OK;
  }
  platform::HRESULT CreateDevice(const platform::GUID&,
                                 platform::DirectInputDevice** device) override {
    *device = this;
    return platform::DI_OK;
  }
  platform::HRESULT SetDataFormat() override { return platform::DI_OK; }
  platform::HRESULT SetCooperativeLevel(platform::Handle, std::uint32_t) override {
    return platform::DI_OK;
  }
  platform::HRESULT GetCapabilities(platform::DIDEVCAPS*) override { return platform::DI_OK; }
  platform::HRESULT EnumObjects(const std::function<bool(std::uint32_t)>&, std::uint32_t) override {
    return platform::DI_OK;
  }
  platform::HRESULT SetProperty(std::uint32_t, const platform::DIPROPRANGE&) override {
    return platform::DI_OK;
  }
  platform::HRESULT Acquire() override { return platform::DI_OK; }
  platform::HRESULT Unacquire() override { return platform::DI_OK; }
  platform::HRESULT Poll() override { return platform::DI_OK; }
  std::optional<platform::Handle> WaitForNews() override { return std::nullopt; }
  void SetTapsApart(bool) override {}
  void Release() override {}  // of the device and of the directory
};

// The state of a pad at rest.
inline platform::DIJOYSTATE2 AtRest() {
  platform::DIJOYSTATE2 state;
  for (std::uint32_t& hat : state.rgdwPOV) hat = platform::kPovCentred;
  return state;
}

}  // namespace kelvaro::test
