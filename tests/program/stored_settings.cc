#include "tests/program/stored_settings.h"

#include "app/resources/settings_keys.h"

namespace kelvaro::tests {

StoredSettings::StoredSettings(const Home& home, const std::string& subkey)
    : path(subkey.empty() ? kProductKey : std::string(kProductKey) + '\\' + subkey),
      registry({home.SettingsFile(), "", ""}) {
  registry.RegOpenKeyA(platform::HKEY_CURRENT_USER, path, &key);
}

bool StoredSettings::Set(const std::string& name, std::uint32_t type, const void* data,
                         std::size_t size) {
  if (key == 0) registry.RegCreateKeyA(platform::HKEY_CURRENT_USER, path, &key);
  return registry.RegSetValueExA(key, name, type, data, static_cast<std::uint32_t>(size)) ==
         platform::ERROR_SUCCESS;
}

std::uint32_t StoredSettings::Number(const std::string& name) {
  std::uint32_t number = 0;
  std::uint32_t size = sizeof number;
  registry.RegQueryValueExA(key, name, nullptr, &number, &size);
  return number;
}

std::string StoredSettings::Text(const std::string& name) {
  char text[256] = {};
  std::uint32_t size = sizeof text - 1;
  registry.RegQueryValueExA(key, name, nullptr, text, &size);
  return text;
}

}  // namespace kelvaro::tests
