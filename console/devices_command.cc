// kelvaroctl devices: what is plugged in.

#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/terminal_text.h"
#include "console/this_system.h"

namespace kelvaro::console {
namespace {

struct Listed {
  std::size_t index = 0;
  std::string name;
  std::string guid;
  platform::DIDEVCAPS caps;  // all zero when it can't be opened
  DeviceRemarks remarks;
};

bool ReadCapabilities(platform::DirectInput& directory, const platform::GUID& guid,
                      platform::DIDEVCAPS* caps) {
  platform::DirectInputDevice* device = nullptr;
  if (directory.CreateDevice(guid, &device) != platform::DI_OK) return false;
  const bool known = device->GetCapabilities(caps) == platform::DI_OK;
  device->Release();
  return known;
}

std::string JsonLine(const Listed& device) {
  return "{\"index\":" + std::to_string(device.index) + ",\"name\":" + JsonText(device.name) +
         ",\"guid\":\"" + device.guid + "\",\"buttons\":" + std::to_string(device.caps.dwButtons) +
         ",\"axes\":" + std::to_string(device.caps.dwAxes) +
         ",\"povs\":" + std::to_string(device.caps.dwPOVs) + device.remarks.json + "}";
}

std::string Text(const Listed& device) {
  return TerminalText(device.name) + "\n  " + std::to_string(device.caps.dwButtons) + " buttons, " +
         std::to_string(device.caps.dwAxes) + " axes, " + std::to_string(device.caps.dwPOVs) +
         " hats, guid " + device.guid + "\n" + device.remarks.text;
}

}  // namespace

int DevicesCommand(const DevicesOptions& options, Streams streams) {
  RealMachine machine;
  platform::DirectInput* directory = nullptr;
  if (platform::devices().DirectInput8Create(platform::DIRECTINPUT_VERSION_8, &directory) !=
      platform::DI_OK) {
    return Complain(streams.err, "the system's list of devices can't be read");
  }
  std::size_t index = 0;
  bool allOpen = true;
  const auto show = [&](const platform::DIDEVICEINSTANCE& instance) {
    Listed device;
    device.index = index++;
    device.name = instance.tszInstanceName;
    device.guid = platform::GuidText(instance.guidInstance);
    const bool known = ReadCapabilities(*directory, instance.guidInstance, &device.caps);
    device.remarks = RemarksOn(instance.guidInstance, machine);
    if (options.json) {
      streams.out << JsonLine(device) << std::endl;
    } else {
      streams.out << Text(device) << std::flush;
    }
    if (!known) {
      Complain(streams.err, "'" + device.name + "' can't be opened; may this user read it?");
      allOpen = false;
    }
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
