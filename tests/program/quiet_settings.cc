#include "tests/program/quiet_settings.h"

#include <filesystem>

#include "app/platform/linux/settings/sqlite_registry.h"
#include "app/resources/settings_keys.h"

namespace kelvaro::tests {

bool PresetQuietSettings(const Home& home) {
  std::filesystem::create_directories(std::filesystem::path(home.SettingsFile()).parent_path());
  platform::SqliteRegistry registry({home.SettingsFile(), "", ""});
  platform::HKEY key = 0;
  bool written = registry.RegCreateKeyA(platform::HKEY_CURRENT_USER, kProductKey, &key) ==
                 platform::ERROR_SUCCESS;
  for (const char* name : {"Welcome Display", "No Device Error Msg"}) {
    const std::uint32_t one = 1;
    written = written && registry.RegSetValueExA(key, name, platform::REG_DWORD, &one,
                                                 sizeof one) == platform::ERROR_SUCCESS;
  }
  registry.RegCloseKey(key);
  return written;
}

std::string LastProfile(const Home& home) {
  platform::SqliteRegistry registry({home.SettingsFile(), "", ""});
  platform::HKEY key = 0;
  if (registry.RegOpenKeyA(platform::HKEY_CURRENT_USER, kProductKey, &key) !=
      platform::ERROR_SUCCESS)
    return {};
  char text[256] = {};
  std::uint32_t size = sizeof text - 1;
  registry.RegQueryValueExA(key, "Last Profile", nullptr, text, &size);
  registry.RegCloseKey(key);
  return text;
}

}  // namespace kelvaro::tests
