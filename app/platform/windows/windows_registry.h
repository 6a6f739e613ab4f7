// The system's registry. Its order is its own: subkeys come by their names. Text that isn't UTF-8
// doesn't come back as it was. Any thread.
#pragma once

#include <string>

#include "app/platform/registry.h"

namespace platform {

class WindowsRegistry final : public Registry {
 public:
  // Whether values can be stored in that key of the user's; where it isn't there yet the nearest
  // one above decides.
  static bool CanStore(std::string path);

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
  // Nothing: the system makes writes lasting by itself, soon after them.
  void BeginWrites() override {}
  std::uint32_t EndWrites() override { return ERROR_SUCCESS; }
};

}  // namespace platform
