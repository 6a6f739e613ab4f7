#include "app/settings/app_settings.h"

#include "app/platform/registry.h"
#include "app/resources/control_ids.h"
#include "app/resources/settings_keys.h"

namespace kelvaro {
namespace {

using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;

constexpr char kLastProfile[] = "Last Profile";

// Load reports whether the first one is there.
constexpr Setting kSettings[] = {
    {"Show Auto-Detect Usage", &AppSettings::showAutoDetectUsage},
    {"Start Minimized", &AppSettings::startMinimized, main_window::kStartMinimized},
    {"Smart Check", &AppSettings::smartCheck, main_window::kSmartCheck},
    {"Shift Reminder", &AppSettings::shiftReminder},
    {kLastProfile, &AppSettings::lastProfile},
    {"No Device Error Msg", &AppSettings::noDeviceErrorMsg},
    {"Autodetect Device Plugin", &AppSettings::autodetectDevicePlugin},
    {"Welcome Display", &AppSettings::welcomeDisplay},
};

bool Read(RegistryKey* key, const char* name, bool* flag) {
  std::uint32_t number = 0;
  if (!key->GetDword(nullptr, name, &number)) return false;
  *flag = number != 0;
  return true;
}
bool Read(RegistryKey* key, const char* name, std::uint32_t* number) {
  return key->GetDword(nullptr, name, number);
}
bool Read(RegistryKey* key, const char* name, ByteString* text) {
  return key->GetString(nullptr, name, text);
}

void Write(RegistryKey* key, const char* name, std::uint32_t number) {
  key->SetDword(nullptr, name, number);
}
void Write(RegistryKey* key, const char* name, const ByteString& text) {
  key->SetString(nullptr, name, text);
}

}  // namespace

std::span<const Setting> Settings() { return kSettings; }

bool AppSettings::Load(RegistryKey* key, bool deviceLoaded) {
  const bool shownBefore = showAutoDetectUsage;
  bool complete = deviceLoaded;
  for (const Setting& setting : kSettings) {
    const bool there = std::visit(
        [&](auto member) { return Read(key, setting.name, &(this->*member)); }, setting.member);
    if (&setting == kSettings) complete = complete && there;
  }
  // Kept: this one value alone isn't taken after a device's values couldn't be read.
  if (!deviceLoaded) showAutoDetectUsage = shownBefore;
  return complete;
}

void AppSettings::Save() const {
  RegistryKey key(HKEY_CURRENT_USER, kProductKey, true);
  for (const Setting& setting : kSettings) {
    std::visit([&](auto member) { Write(&key, setting.name, this->*member); }, setting.member);
  }
}

void AppSettings::RememberLastProfile(const ByteString& name) {
  lastProfile = name;
  RegistryKey(HKEY_CURRENT_USER, kProductKey, true).SetString(nullptr, kLastProfile, lastProfile);
}

// The first try makes the new key, even if it fails, so there is only one try.
void AppSettings::Migrate() {
  for (const platform::HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    if (RegistryKey(hive, kProductKey, false).isOpen) continue;
    RegistryKey product(hive, kProductKey, true);
    RegistryKey former(hive, kFormerProductKey, false);
    product.CopyTree(&former);
  }
}

}  // namespace kelvaro
