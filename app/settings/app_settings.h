// What is remembered outside of profiles and devices: each value is a member and a row of
// Settings(), which is all that loading, saving, the check boxes of the Settings tab and the
// console know of it.
#pragma once

#include <cstdint>
#include <span>
#include <variant>

#include "foundation/byte_string.h"
#include "foundation/registry_key.h"

namespace kelvaro {

// The members' start values hold while nothing is stored.
struct AppSettings {
  bool showAutoDetectUsage = true;
  bool startMinimized = false;
  bool smartCheck = true;
  bool shiftReminder = true;
  ByteString lastProfile;
  bool noDeviceErrorMsg = false;
  bool autodetectDevicePlugin = false;
  std::uint32_t welcomeDisplay = 0;
  ByteString lastDevice;  // as it was loaded
  bool answerAtOnce = false;
  ByteString onlyForKelvaro;  // names of devices, with a semicolon between two

  bool IsOnlyForKelvaro(const ByteString& device) const;

  // Take what is stored under the product key, opened as `key`. First what a selection of the last
  // device goes by: false unless there is one.
  bool LoadBeforeDevice(RegistryKey* key);
  // Then the others; showAutoDetectUsage only if `deviceLoaded`. False unless that is so and that
  // one value is there.
  bool Load(RegistryKey* key, bool deviceLoaded);
  void Save() const;
  // Stored at once.
  void RememberLastProfile(const ByteString& name);

  // Takes over the settings of the product that came before.
  static void Migrate();
};

struct Setting {
  enum class Saved {
    ByTheWindow,    // by AppSettings::Save
    WithTheDevice,  // by the window, when it saves what belongs to the device
    Never,          // by the window
  };

  const char* name;  // in the registry
  const char* means;
  std::variant<bool AppSettings::*, std::uint32_t AppSettings::*, ByteString AppSettings::*> member;
  Saved saved = Saved::ByTheWindow;
  std::uint32_t checkBox = 0;  // of the Settings tab; 0: none

  // From and to the product key. False, with the member untouched, unless a value of the member's
  // kind is there.
  bool Load(RegistryKey* key, AppSettings* settings) const;
  bool Store(RegistryKey* key, const AppSettings& settings) const;
};

// In the order of loading and saving.
std::span<const Setting> Settings();

}  // namespace kelvaro
