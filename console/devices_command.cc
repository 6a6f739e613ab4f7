// kelvaroctl devices: what is plugged in.

#include "app/platform/recording/recording.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/json_text.h"
#include "console/program_list.h"
#include "console/real_machine.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

// One device, with what the system tells of its node.
struct Listed {
  std::size_t index = 0;
  std::string name;
  std::string guid;
  platform::DIDEVCAPS caps;   // all zero when it can't be opened
  platform::NodePlace place;  // empty when it has just gone
  bool grabbed = false;
  std::vector<platform::OtherProgram> programs;
};

bool ReadCapabilities(platform::DirectInput& directory, const platform::GUID& guid,
                      platform::DIDEVCAPS* caps) {
  platform::DirectInputDevice* device = nullptr;
  if (directory.CreateDevice(guid, &device) != platform::DI_OK) return false;
  const bool known = device->GetCapabilities(caps) == platform::DI_OK;
  device->Release();
  return known;
}

std::string JsonPrograms(const std::vector<platform::OtherProgram>& programs) {
  std::string list;
  for (const platform::OtherProgram& program : programs) {
    list += (list.empty() ? "{\"pid\":" : ",{\"pid\":") + std::to_string(program.process) +
            ",\"program\":" + JsonText(program.name) + "}";
  }
  return "[" + list + "]";
}

std::string JsonLine(const Listed& device) {
  const auto truth = [](bool value) { return value ? "true" : "false"; };
  return "{\"index\":" + std::to_string(device.index) + ",\"name\":" + JsonText(device.name) +
         ",\"guid\":\"" + device.guid + "\",\"buttons\":" + std::to_string(device.caps.dwButtons) +
         ",\"axes\":" + std::to_string(device.caps.dwAxes) +
         ",\"povs\":" + std::to_string(device.caps.dwPOVs) +
         ",\"node\":" + JsonText(device.place.path) +
         ",\"port\":" + JsonText(device.place.ids.physical) +
         ",\"serial\":" + JsonText(device.place.ids.unique) +
         ",\"mirror\":" + truth(platform::IsMirror(device.place.ids)) +
         ",\"grabbed\":" + truth(device.grabbed) + ",\"openIn\":" + JsonPrograms(device.programs) +
         "}";
}

// The system doesn't tell which of several programs has grabbed a device.
std::string UseText(const Listed& device) {
  const std::string programs = ProgramsText(device.programs);
  if (!device.grabbed) return programs.empty() ? "" : "  also open in " + programs + "\n";
  const std::string grabbed = "  grabbed: only another program gets what it says; ";
  if (programs.empty()) return grabbed + "the system doesn't tell this user which one\n";
  return grabbed + "it is open in " + programs + "\n";
}

std::string Text(const Listed& device) {
  const platform::DeviceIds& ids = device.place.ids;
  std::string text = TerminalText(device.name) + "\n  " + std::to_string(device.caps.dwButtons) +
                     " buttons, " + std::to_string(device.caps.dwAxes) + " axes, " +
                     std::to_string(device.caps.dwPOVs) + " hats, guid " + device.guid + "\n";
  text += "  node " + (device.place.path.empty() ? "gone" : device.place.path) +
          (ids.physical.empty() ? "" : ", port " + TerminalText(ids.physical)) +
          (ids.unique.empty() ? "" : ", serial " + TerminalText(ids.unique)) + "\n";
  if (platform::IsMirror(ids)) {
    text += "  mirror: a program made it, mostly to stand for a real pad of this list\n";
  }
  return text + UseText(device);
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
    if (const auto place = machine.PlaceOf(instance.guidInstance)) {
      device.place = *place;
      device.grabbed = platform::IsGrabbed(place->path);
      device.programs = platform::ProgramsWithOpen(place->path);
    }
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
