#include "app/settings/app_settings.h"

#include <sstream>
#include <string>

#include "app/platform/registry.h"
#include "app/resources/control_ids.h"
#include "app/resources/settings_keys.h"

namespace kelvaro {
namespace {

using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;
using Saved = Setting::Saved;

constexpr char kLastProfile[] = "Last Profile";
constexpr char kAnswerAtOnce[] = "Answer At Once";
constexpr char kOnlyForKelvaro[] = "Only For Kelvaro";

// Load reports whether the first one is there.
constexpr Setting kSettings[] = {
    {"Show Auto-Detect Usage", "explain the detection of inputs before it begins",
     &AppSettings::showAutoDetectUsage},
    {"Start Minimized", "hide the window after the start", &AppSettings::startMinimized,
     Saved::ByTheWindow, main_window::kStartMinimized},
    {"Smart Check", "look for forgotten angle brackets in keys", &AppSettings::smartCheck,
     Saved::ByTheWindow, main_window::kSmartCheck},
    {"Shift Reminder", "ask before an uppercase letter is taken", &AppSettings::shiftReminder},
    {kLastProfile, "the profile that the window starts with", &AppSettings::lastProfile},
    {"No Device Error Msg", "don't say that a profile's device is missing",
     &AppSettings::noDeviceErrorMsg},
    {"Autodetect Device Plugin", "look for a missing device every five seconds",
     &AppSettings::autodetectDevicePlugin},
    {"Welcome Display", "the welcome was shown, if it isn't 0", &AppSettings::welcomeDisplay},
    {kLastDevice, "the device that the window starts with", &AppSettings::lastDevice,
     Saved::WithTheDevice},
    {kAnswerAtOnce, "take in what a device does when it does it, not at the next poll",
     &AppSettings::answerAtOnce, Saved::Never},
    {kOnlyForKelvaro, "pads that no other program gets while they are in use, with ; between two",
     &AppSettings::onlyForKelvaro, Saved::Never},
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

bool Write(RegistryKey* key, const char* name, std::uint32_t number) {
  return key->SetDword(nullptr, name, number);
}
bool Write(RegistryKey* key, const char* name, const ByteString& text) {
  return key->SetString(nullptr, name, text);
}

}  // namespace

std::span<const Setting> Settings() { return kSettings; }

bool Setting::Load(RegistryKey* key, AppSettings* settings) const {
  return std::visit([&](auto value) { return Read(key, name, &(settings->*value)); }, member);
}

bool Setting::Store(RegistryKey* key, const AppSettings& settings) const {
  return std::visit([&](auto value) { return Write(key, name, settings.*value); }, member);
}

bool AppSettings::LoadBeforeDevice(RegistryKey* key) {
  const bool isThere = Read(key, kLastDevice, &lastDevice);
  Read(key, kAnswerAtOnce, &answerAtOnce);
  Read(key, kOnlyForKelvaro, &onlyForKelvaro);
  return isThere;
}

bool AppSettings::IsOnlyForKelvaro(const ByteString& device) const {
  std::istringstream names(Bytes(onlyForKelvaro));
  for (std::string name; std::getline(names, name, ';');) {
    const std::size_t begin = name.find_first_not_of(' ');
    if (begin == std::string::npos) continue;
    if (name.substr(begin, name.find_last_not_of(' ') + 1 - begin) == Bytes(device)) return true;
  }
  return false;
}

bool AppSettings::Load(RegistryKey* key, bool deviceLoaded) {
  const bool shownBefore = showAutoDetectUsage;
  bool complete = deviceLoaded;
  for (const Setting& setting : kSettings) {
    if (setting.saved != Saved::ByTheWindow) continue;
    const bool there = setting.Load(key, this);
    if (&setting == kSettings) complete = complete && there;
  }
  // Kept: this one value alone isn't taken after a device's values couldn't be read.
  if (!deviceLoaded) showAutoDetectUsage = shownBefore;
  return complete;
}

void AppSettings::Save() const {
  RegistryKey key(HKEY_CURRENT_USER, kProductKey, true);
  for (const Setting& setting : kSettings)
    if (setting.saved == Saved::ByTheWindow) setting.Store(&key, *this);
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
