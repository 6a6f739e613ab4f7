#include "console/this_system.h"

#include "app/resources/settings_keys.h"

namespace kelvaro::console {

std::uint16_t KeyCodeOf(const KeyStep& step) { return step.scan; }

// Keys go out as they are written.
std::string KeyDoubt(const KeyStep&) { return {}; }
Typing DesktopTyping() { return nullptr; }

DeviceRemarks RemarksOn(const platform::GUID&, RealMachine&) { return {}; }

bool IsTakenByAnother(const platform::GUID&, RealMachine&) { return false; }

struct SettingsStore::Parts {
  static platform::Platform Groups(platform::Registry* registry) {
    platform::Platform groups;
    groups.registry = registry;
    return groups;
  }

  platform::WindowsRegistry registry;
  const platform::InstalledPlatform installed{Groups(&registry)};
  const std::string place = std::string("HKEY_CURRENT_USER\\") + kProductKey;
};

SettingsStore::SettingsStore(Streams) : parts(std::make_unique<Parts>()) {}
SettingsStore::~SettingsStore() = default;
const std::string& SettingsStore::Place() const { return parts->place; }
bool SettingsStore::IsDamaged() const { return false; }

}  // namespace kelvaro::console
