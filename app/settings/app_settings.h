// What is remembered outside of profiles and devices: each value is a member and a row of
// Settings(), which is all that loading, saving and the check boxes of the Settings tab know of it.
#pragma once

#include <cstdint>
#include <span>
#include <variant>

#include "foundation/byte_string.h"
#include "foundation/registry_key.h"

namespace kelvaro {

struct AppSettings {
  bool showAutoDetectUsage = true;
  bool startMinimized = false;
  bool smartCheck = true;
  bool shiftReminder = true;
  ByteString lastProfile;
  bool noDeviceErrorMsg = false;
  bool autodetectDevicePlugin = false;
  std::uint32_t welcomeDisplay = 0;

  // Takes what is stored under the product key, opened as `key`; showAutoDetectUsage only if
  // `deviceLoaded`. False unless that is so and that one value is there.
  bool Load(RegistryKey* key, bool deviceLoaded);
  void Save() const;
  // Stored at once.
  void RememberLastProfile(const ByteString& name);

  // Takes over the settings of the product that came before.
  static void Migrate();
};

struct Setting {
  const char* name;  // in the registry
  std::variant<bool AppSettings::*, std::uint32_t AppSettings::*, ByteString AppSettings::*> member;
  std::uint32_t checkBox = 0;  // of the Settings tab; 0: none
};

// In the order of loading and saving.
std::span<const Setting> Settings();

}  // namespace kelvaro
