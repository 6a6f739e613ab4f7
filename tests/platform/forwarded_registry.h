// The registry of a platform, handed on call by call and installed in its place: a test derives
// from it and changes what it wants to see or to have otherwise.
#pragma once

#include <cstdint>
#include <string>

#include "app/platform/platform.h"

namespace kelvaro {

class ForwardedRegistry : public platform::Registry {
 public:
  // Installs itself, for its life, in the place of the registry among these.
  explicit ForwardedRegistry(const platform::Platform& groups)
      : registry(*groups.registry), installed(Replaced(groups)) {}

  std::uint32_t RegOpenKeyA(platform::HKEY key, const std::string& path,
                            platform::HKEY* opened) override {
    return registry.RegOpenKeyA(key, path, opened);
  }
  std::uint32_t RegCreateKeyA(platform::HKEY key, const std::string& path,
                              platform::HKEY* opened) override {
    return registry.RegCreateKeyA(key, path, opened);
  }
  std::uint32_t RegCloseKey(platform::HKEY key) override { return registry.RegCloseKey(key); }
  std::uint32_t RegQueryValueExA(platform::HKEY key, const std::string& name, std::uint32_t* type,
                                 void* data, std::uint32_t* size) override {
    return registry.RegQueryValueExA(key, name, type, data, size);
  }
  std::uint32_t RegSetValueExA(platform::HKEY key, const std::string& name, std::uint32_t type,
                               const void* data, std::uint32_t size) override {
    return registry.RegSetValueExA(key, name, type, data, size);
  }
  std::uint32_t RegDeleteValueA(platform::HKEY key, const std::string& name) override {
    return registry.RegDeleteValueA(key, name);
  }
  std::uint32_t RegEnumValueA(platform::HKEY key, std::uint32_t index, char* name,
                              std::uint32_t* nameSize, std::uint32_t* type, void* data,
                              std::uint32_t* size) override {
    return registry.RegEnumValueA(key, index, name, nameSize, type, data, size);
  }
  std::uint32_t RegEnumKeyA(platform::HKEY key, std::uint32_t index, char* name,
                            std::uint32_t nameSize) override {
    return registry.RegEnumKeyA(key, index, name, nameSize);
  }
  void BeginWrites() override { registry.BeginWrites(); }
  std::uint32_t EndWrites() override { return registry.EndWrites(); }

 private:
  platform::Platform Replaced(platform::Platform groups) {
    groups.registry = this;
    return groups;
  }

  platform::Registry& registry;
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro
