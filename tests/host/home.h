// The home folder of a person who has nothing yet.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/host/files.h"

namespace kelvaro::tests {

class Home : public TemporaryFolder {
 public:
  explicit Home(const std::string& parent = "/tmp") : TemporaryFolder(parent) {
    for (const char* name : {"config", "runtime", "cache", "data"})
      std::filesystem::create_directory(In(name));
    std::filesystem::permissions(In("runtime"), std::filesystem::perms::owner_all);
  }

  // HOME, XDG_CONFIG_HOME, XDG_RUNTIME_DIR and the rest that a program looks at; no display.
  std::map<std::string, std::string> Environment() const {
    return {{"HOME", folder},
            {"XDG_CONFIG_HOME", In("config")},
            {"XDG_RUNTIME_DIR", In("runtime")},
            {"XDG_CACHE_HOME", In("cache")},
            {"XDG_DATA_HOME", In("data")},
            {"LANG", "C.UTF-8"},
            {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + In("runtime/none")},
            {"DISPLAY", ""},
            {"WAYLAND_DISPLAY", ""},
            {"QT_QPA_PLATFORM", ""}};
  }
  std::string SettingsFile() const { return In("config/kelvaro/settings.sqlite3"); }
};

}  // namespace kelvaro::tests
