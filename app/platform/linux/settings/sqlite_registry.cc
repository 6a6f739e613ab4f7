#include "app/platform/linux/settings/sqlite_registry.h"

#include <algorithm>
#include <utility>

#include "app/platform/file_pattern.h"
#include "app/platform/linux/home_folders.h"

namespace platform {
namespace {

const SettingsFile::Key kAutostartKey{"Software", "Microsoft", "Windows", "CurrentVersion", "Run"};

bool BeginsWith(const SettingsFile::Key& key, const SettingsFile::Key& start) {
  return key.size() >= start.size() &&
         std::equal(start.begin(), start.end(), key.begin(),
                    [](const std::string& a, const std::string& b) { return SameName(a, b); });
}

}  // namespace

RegistryPlaces UsualRegistryPlaces() {
  RegistryPlaces places;
  const std::string config = ConfigFolder();
  if (!config.empty()) {
    places.userFile = config + "/kelvaro/settings.sqlite3";
    places.autostartFolder = config + "/autostart";
  }
  places.machineFile = "/etc/kelvaro/settings.sqlite3";
  return places;
}

SqliteRegistry::SqliteRegistry(const RegistryPlaces& places)
    : user(places.userFile, SettingsFile::Kind::OfTheUser,
           [this](const std::string& text) { Tell(text); }),
      machine(places.machineFile, SettingsFile::Kind::OfTheMachine,
              [this](const std::string& text) { Tell(text); }),
      autostart(places.autostartFolder) {}

void SqliteRegistry::OnTrouble(std::function<void(const std::string&)> newListener) {
  const std::lock_guard lock(mutex);
  listener = std::move(newListener);
  for (const std::string& text : untold) listener(text);
  untold.clear();
}

void SqliteRegistry::Tell(const std::string& text) {
  if (listener) {
    listener(text);
  } else {
    untold.push_back(text);
  }
}

SqliteRegistry::Place SqliteRegistry::PlaceOf(HKEY key) {
  Place place;
  if (key == HKEY_CURRENT_USER) {
    place.file = &user;
  } else if (key == HKEY_LOCAL_MACHINE) {
    place.file = &machine;
  } else if (const auto found = open.find(key); found != open.end()) {
    place = found->second;
  }
  return place;
}

SqliteRegistry::Place SqliteRegistry::Below(const Place& place, const std::string& path) {
  Place below = place;
  for (std::string& name : KeyNames(path)) below.key.push_back(std::move(name));
  below.isAutostart = below.file == &user && BeginsWith(below.key, kAutostartKey);
  return below;
}

std::uint32_t SqliteRegistry::Open(HKEY key, const std::string& path,
                                   std::uint32_t (SettingsFile::*reach)(const SettingsFile::Key&),
                                   std::uint32_t noMoreKeys, HKEY* opened) {
  const std::lock_guard lock(mutex);
  const Place place = Below(PlaceOf(key), path);
  if (!place.file) return ERROR_INVALID_HANDLE;
  if (place.isAutostart) {
    if (place.key.size() > kAutostartKey.size()) return noMoreKeys;
  } else if (const std::uint32_t error = (place.file->*reach)(place.key)) {
    return error;
  }
  open[++last] = place;
  *opened = last;
  return ERROR_SUCCESS;
}

std::uint32_t SqliteRegistry::RegOpenKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return Open(key, path, &SettingsFile::FindKey, ERROR_FILE_NOT_FOUND, opened);
}

std::uint32_t SqliteRegistry::RegCreateKeyA(HKEY key, const std::string& path, HKEY* opened) {
  return Open(key, path, &SettingsFile::MakeKey, ERROR_ACCESS_DENIED, opened);
}

std::uint32_t SqliteRegistry::RegCloseKey(HKEY key) {
  const std::lock_guard lock(mutex);
  if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
  return open.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::uint32_t SqliteRegistry::RegQueryValueExA(HKEY key, const std::string& name,
                                               std::uint32_t* type, void* data,
                                               std::uint32_t* size) {
  const std::lock_guard lock(mutex);
  const Place place = PlaceOf(key);
  if (!place.file) return ERROR_INVALID_HANDLE;
  if (place.isAutostart) {
    for (const StoredValue& value : autostart.Values()) {
      if (SameName(value.name, name)) return GiveValue(value, type, data, size);
    }
    return ERROR_FILE_NOT_FOUND;
  }
  StoredValue value;
  if (const std::uint32_t error = place.file->Read(place.key, name, &value)) return error;
  return GiveValue(value, type, data, size);
}

std::uint32_t SqliteRegistry::RegSetValueExA(HKEY key, const std::string& name, std::uint32_t type,
                                             const void* data, std::uint32_t size) {
  const std::lock_guard lock(mutex);
  const Place place = PlaceOf(key);
  if (!place.file) return ERROR_INVALID_HANDLE;
  StoredValue value{name, type, {}};
  if (size != 0) value.data.assign(static_cast<const char*>(data), size);
  return place.isAutostart ? autostart.Write(value) : place.file->Write(place.key, value);
}

std::uint32_t SqliteRegistry::RegDeleteValueA(HKEY key, const std::string& name) {
  const std::lock_guard lock(mutex);
  const Place place = PlaceOf(key);
  if (!place.file) return ERROR_INVALID_HANDLE;
  return place.isAutostart ? autostart.Delete(name) : place.file->Delete(place.key, name);
}

std::uint32_t SqliteRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                            std::uint32_t* nameSize, std::uint32_t* type,
                                            void* data, std::uint32_t* size) {
  const std::lock_guard lock(mutex);
  const Place place = PlaceOf(key);
  if (!place.file) return ERROR_NO_MORE_ITEMS;
  StoredValue value;
  if (place.isAutostart) {
    const std::vector<StoredValue> values = autostart.Values();
    if (index >= values.size()) return ERROR_NO_MORE_ITEMS;
    value = values[index];
  } else if (const std::uint32_t error = place.file->ValueAt(place.key, index, &value)) {
    return error;
  }
  return GiveNamedValue(value, name, nameSize, type, data, size);
}

std::uint32_t SqliteRegistry::RegEnumKeyA(HKEY key, std::uint32_t index, char* name,
                                          std::uint32_t nameSize) {
  const std::lock_guard lock(mutex);
  const Place place = PlaceOf(key);
  if (!place.file || place.isAutostart) return ERROR_NO_MORE_ITEMS;
  std::string subkey;
  if (const std::uint32_t error = place.file->KeyAt(place.key, index, &subkey)) return error;
  return GiveName(subkey, name, nameSize);
}

void SqliteRegistry::BeginWrites() {
  const std::lock_guard lock(mutex);
  user.BeginGroup();
}

std::uint32_t SqliteRegistry::EndWrites() {
  const std::lock_guard lock(mutex);
  return user.EndGroup();
}

}  // namespace platform
