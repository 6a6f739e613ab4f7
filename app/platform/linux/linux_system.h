// The system's words, and the desktop of a program that has none.
#pragma once

#include <string>

#include "app/platform/desktop.h"
#include "app/platform/files.h"

namespace platform {

class LinuxSystem : public System {
 public:
  // The C library's text for an errno value, and a line feed. Empty for a number it doesn't know.
  std::string FormatMessageA(std::uint32_t code) override;
};

class NoDesktop : public Desktop {
 public:
  // No box can be shown: 0.
  std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                           std::uint32_t type) override;
};

}  // namespace platform
