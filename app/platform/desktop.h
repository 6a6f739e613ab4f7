// What is seen on the screen. A window is known by a number, 0 for none.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

using WindowHandle = std::uintptr_t;
constexpr WindowHandle kNoWindow = 0;

constexpr std::uint32_t MB_OK = 0x0;
constexpr std::uint32_t MB_YESNO = 0x4;

constexpr std::int32_t IDOK = 1;
constexpr std::int32_t IDCANCEL = 2;
constexpr std::int32_t IDYES = 6;
constexpr std::int32_t IDNO = 7;

class Desktop {
 public:
  virtual ~Desktop() = default;

  // Asks modally in front of `owner` and returns the button, or 0 when the box can't be shown.
  virtual std::int32_t MessageBoxA(WindowHandle owner, const std::string& text,
                                   const std::string& caption, std::uint32_t type) = 0;
};

// Of the installed platform.
std::int32_t MessageBoxA(WindowHandle owner, const std::string& text, const std::string& caption,
                         std::uint32_t type);

}  // namespace platform
