#include "app/platform/linux/linux_system.h"

#include <string.h>

#include <limits>

#include "app/platform/linux/home_folders.h"

namespace platform {

std::string LinuxSystem::FormatMessageA(std::uint32_t code) {
  if (code > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) return {};
  const char* text = strerrordesc_np(static_cast<int>(code));
  return text ? std::string(text) + "\n" : std::string();
}

std::string LinuxSystem::GetUserDataFolder() { return DataFolder(); }

}  // namespace platform
