// The settings in a home folder.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/linux/settings/sqlite_registry.h"
#include "tests/host/home.h"

namespace kelvaro::tests {

class StoredSettings {
 public:
  // Of the program's own key, or of one below it.
  explicit StoredSettings(const Home& home, const std::string& subkey = "");
  ~StoredSettings() { registry.RegCloseKey(key); }
  StoredSettings(const StoredSettings&) = delete;
  StoredSettings& operator=(const StoredSettings&) = delete;

  // False when it can't be written.
  bool Set(const std::string& name, std::uint32_t number) {
    return Set(name, platform::REG_DWORD, &number, sizeof number);
  }
  bool Set(const std::string& name, const std::string& text) {
    return Set(name, platform::REG_SZ, text.c_str(), text.size() + 1);
  }
  // 0 and empty for one that isn't there.
  std::uint32_t Number(const std::string& name);
  std::string Text(const std::string& name);

  // Settings by which the program comes up without a word: no welcome, and no box about a profile
  // whose device isn't there.
  bool SetQuiet() { return Set("Welcome Display", 1u) && Set("No Device Error Msg", 1u); }

 private:
  bool Set(const std::string& name, std::uint32_t type, const void* data, std::size_t size);

  const std::string path;
  platform::SqliteRegistry registry;
  platform::HKEY key = 0;
};

}  // namespace kelvaro::tests
