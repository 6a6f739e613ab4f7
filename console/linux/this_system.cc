#include "console/this_system.h"

#include <vector>

#include "app/platform/linux/device_use.h"
#include "app/platform/linux/key_map.h"
#include "app/platform/linux/keyboard_layout.h"
#include "app/platform/linux/settings/sqlite_registry.h"
#include "console/console_error.h"
#include "console/event_line.h"
#include "console/json_text.h"
#include "console/program_list.h"
#include "console/terminal_text.h"

namespace kelvaro::console {

std::uint16_t KeyCodeOf(const KeyStep& step) { return platform::KernelKeyCode(step.vk, step.scan); }

std::string KeyDoubt(const KeyStep& step) {
  if ((step.flags & KeyFlagPause) || step.vk == 0) return "";
  const std::uint16_t code = platform::KernelKeyCode(step.vk, step.scan);
  const std::string name = KeyName(step.vk, step.scan);
  if (code == 0) return "Linux has no key for " + name + ", so nothing is sent";
  if (platform::DependsOnNumLock(code)) return "Num Lock decides what " + name + " types";
  if (!platform::IsInX(code)) return name + " needs /dev/uinput; by XTest nothing is sent";
  return "";
}

Typing DesktopTyping() {
  const std::shared_ptr<platform::KeyboardLayout> layout = platform::KeyboardLayout::Open();
  if (!layout) return nullptr;
  return [layout](std::uint16_t code, bool shift) { return layout->Types(code, shift); };
}

namespace {

struct Use {
  bool grabbed = false;
  std::vector<platform::OtherProgram> programs;
};

std::string JsonPrograms(const std::vector<platform::OtherProgram>& programs) {
  std::string list;
  for (const platform::OtherProgram& program : programs) {
    list += (list.empty() ? "{\"pid\":" : ",{\"pid\":") + std::to_string(program.process) +
            ",\"program\":" + JsonText(program.name) + "}";
  }
  return "[" + list + "]";
}

// The system doesn't tell which of several programs has grabbed a device.
std::string UseText(const Use& use) {
  const std::string programs = ProgramsText(use.programs);
  if (!use.grabbed) return programs.empty() ? "" : "  also open in " + programs + "\n";
  const std::string grabbed = "  grabbed: only another program gets what it says; ";
  if (programs.empty()) return grabbed + "the system doesn't tell this user which one\n";
  return grabbed + "it is open in " + programs + "\n";
}

}  // namespace

DeviceRemarks RemarksOn(const platform::GUID& device, RealMachine& machine) {
  platform::NodePlace place;  // empty when it has just gone
  Use use;
  if (const auto found = machine.System().GameDevices().PlaceOf(device)) {
    place = *found;
    use = {platform::IsGrabbed(place.path), platform::ProgramsWithOpen(place.path)};
  }
  const auto truth = [](bool value) { return value ? "true" : "false"; };
  const platform::DeviceIds& ids = place.ids;
  DeviceRemarks remarks;
  remarks.json = ",\"node\":" + JsonText(place.path) + ",\"port\":" + JsonText(ids.physical) +
                 ",\"serial\":" + JsonText(ids.unique) +
                 ",\"mirror\":" + truth(platform::IsMirror(ids)) +
                 ",\"grabbed\":" + truth(use.grabbed) + ",\"openIn\":" + JsonPrograms(use.programs);
  remarks.text = "  node " + (place.path.empty() ? "gone" : place.path) +
                 (ids.physical.empty() ? "" : ", port " + TerminalText(ids.physical)) +
                 (ids.unique.empty() ? "" : ", serial " + TerminalText(ids.unique)) + "\n";
  if (platform::IsMirror(ids)) {
    remarks.text += "  mirror: a program made it, mostly to stand for a real pad of this list\n";
  }
  remarks.text += UseText(use);
  return remarks;
}

bool IsTakenByAnother(const platform::GUID& device, RealMachine& machine) {
  const auto place = machine.System().GameDevices().PlaceOf(device);
  return place && HasKelvaro(platform::ProgramsWithOpen(place->path)) &&
         platform::IsGrabbed(place->path);
}

struct SettingsStore::Parts {
  explicit Parts(Streams streams) {
    registry.OnTrouble([this, streams](const std::string& text) {
      damaged = true;
      Complain(streams.err, text);
    });
  }
  static platform::Platform Groups(platform::Registry* registry) {
    platform::Platform groups;
    groups.registry = registry;
    return groups;
  }

  const platform::RegistryPlaces places = platform::UsualRegistryPlaces();
  bool damaged = false;
  platform::SqliteRegistry registry{places};
  const platform::InstalledPlatform installed{Groups(&registry)};
};

SettingsStore::SettingsStore(Streams streams) : parts(std::make_unique<Parts>(streams)) {}
SettingsStore::~SettingsStore() = default;
const std::string& SettingsStore::Place() const { return parts->places.userFile; }
bool SettingsStore::IsDamaged() const { return parts->damaged; }

}  // namespace kelvaro::console
