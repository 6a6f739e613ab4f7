// The system's words, and where a person's folders are.
#pragma once

#include <string>

#include "app/platform/files.h"

namespace platform {

class LinuxSystem : public System {
 public:
  // The C library's text for an errno value, and a line feed. Empty for a number it doesn't know.
  std::string FormatMessageA(std::uint32_t code) override;
  std::string GetUserDataFolder() override;
};

}  // namespace platform
