// kelvaroctl devices: what is plugged in.

#include "app/platform/simulation/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/json_text.h"
#include "console/real_machine.h"

namespace kelvaro::console {
namespace {

// What a device has; all zero when it can't be opened.
bool ReadCapabilities(platform::DirectInput& directory, const platform::GUID& guid,
                      platform::DIDEVCAPS* caps) {
  platform::DirectInputDevice* device = nullptr;
  if (directory.CreateDevice(guid, &device) != platform::DI_OK) return false;
  const bool known = device->GetCapabilities(caps) == platform::DI_OK;
  device->Release();
  return known;
}

std::string JsonLine(std::size_t index, const platform::DIDEVICEINSTANCE& device,
                     const platform::DIDEVCAPS& caps) {
  return "{\"index\":" + std::to_string(index) +
         ",\"name\":" + JsonText(std::string(device.tszInstanceName)) + ",\"guid\":\"" +
         platform::simulation::GuidText(device.guidInstance) +
         "\",\"buttons\":" + std::to_string(caps.dwButtons) +
         ",\"axes\":" + std::to_string(caps.dwAxes) + ",\"povs\":" + std::to_string(caps.dwPOVs) +
         "}";
}

}  // namespace

int DevicesCommand(const DevicesOptions& options, Streams streams) {
  RealMachine machine;
  platform::DirectInput* directory = nullptr;
  if (platform::DirectInput8Create(platform::DIRECTINPUT_VERSION_8, &directory) !=
      platform::DI_OK) {
    return Complain(streams.err, "the system's list of devices can't be read");
  }
  std::size_t index = 0;
  bool allOpen = true;
  const auto show = [&](const platform::DIDEVICEINSTANCE& device) {
    platform::DIDEVCAPS caps;
    const bool known = ReadCapabilities(*directory, device.guidInstance, &caps);
    if (options.json) {
      streams.out << JsonLine(index, device, caps) << std::endl;
    } else {
      streams.out << device.tszInstanceName << "\n  " << caps.dwButtons << " buttons, "
                  << caps.dwAxes << " axes, " << caps.dwPOVs << " hats, guid "
                  << platform::simulation::GuidText(device.guidInstance) << std::endl;
    }
    if (!known) {
      Complain(streams.err, "'" + std::string(device.tszInstanceName) +
                                "' can't be opened; may this user read it?");
      allOpen = false;
    }
    ++index;
    return true;
  };
  const platform::HRESULT result =
      directory->EnumDevices(platform::DI8DEVCLASS_GAMECTRL, show, platform::DIEDFL_ATTACHEDONLY);
  directory->Release();
  if (result != platform::DI_OK) {
    return Complain(streams.err, "the system's list of devices can't be read");
  }
  if (index == 0 && !options.json) streams.err << "No game pad is plugged in." << std::endl;
  return allOpen ? kDone : kBad;
}

}  // namespace kelvaro::console
