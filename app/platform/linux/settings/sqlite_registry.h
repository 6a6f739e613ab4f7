// The registry of Linux: the current user's hive is an SQLite file in the configuration folder, the
// machine's one of the same shape in /etc, which is read alone. The current user's key
// Software\Microsoft\Windows\CurrentVersion\Run is always there and is the autostart folder, one
// entry a value; it has no subkeys. Nothing is opened before the first operation. Any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "app/platform/linux/settings/autostart_folder.h"
#include "app/platform/linux/settings/settings_file.h"
#include "app/platform/registry.h"

namespace platform {

// Full paths; an empty one is a place that isn't there.
struct RegistryPlaces {
  std::string userFile;
  std::string machineFile;
  std::string autostartFolder;
};

// kelvaro/settings.sqlite3 and autostart/ in the configuration folder, and
// /etc/kelvaro/settings.sqlite3.
RegistryPlaces UsualRegistryPlaces();

class SqliteRegistry final : public Registry {
 public:
  explicit SqliteRegistry(const RegistryPlaces& places = UsualRegistryPlaces());

  // Told what a user should know, once each: a settings file was damaged, and where it is now. On
  // the thread of the operation that met it; must not use the registry. What came before the
  // listener is told at once.
  void OnTrouble(std::function<void(const std::string& text)> listener);

  std::uint32_t RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) override;
  std::uint32_t RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) override;
  std::uint32_t RegCloseKey(HKEY key) override;
  std::uint32_t RegQueryValueExA(HKEY key, const std::string& name, std::uint32_t* type, void* data,
                                 std::uint32_t* size) override;
  std::uint32_t RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                               const void* data, std::uint32_t size) override;
  std::uint32_t RegDeleteValueA(HKEY key, const std::string& name) override;
  std::uint32_t RegEnumValueA(HKEY key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                              std::uint32_t* type, void* data, std::uint32_t* size) override;
  std::uint32_t RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                            std::uint32_t nameSize) override;
  // Of the user's file; the autostart folder's entries are files of their own.
  void BeginWrites() override;
  std::uint32_t EndWrites() override;

 private:
  // What a handle stands for. Held as names, so that it outlives a file that is set aside.
  struct Place {
    SettingsFile* file = nullptr;  // null: not open
    SettingsFile::Key key;
    bool isAutostart = false;
  };

  Place PlaceOf(HKEY key);
  Place Below(const Place& place, const std::string& path);
  // `reach` finds or makes a key; in the autostart folder there is only the one.
  std::uint32_t Open(HKEY key, const std::string& path,
                     std::uint32_t (SettingsFile::*reach)(const SettingsFile::Key& key),
                     std::uint32_t noMoreKeys, HKEY* opened);
  void Tell(const std::string& text);

  std::mutex mutex;  // guards all below
  std::function<void(const std::string&)> listener;
  std::vector<std::string> untold;
  SettingsFile user;
  SettingsFile machine;
  AutostartFolder autostart;
  std::map<HKEY, Place> open;
  HKEY last = 0;
};

}  // namespace platform
