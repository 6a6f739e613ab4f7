// Messages that are posted to the main window. WM_CLOSE_PROGRAM also travels between processes: its
// value stays.
#pragma once

#include <cstdint>

namespace kelvaro {

constexpr std::uint32_t WM_TRAY_CALLBACK = 0x8000;
constexpr std::uint32_t WM_HIDE_TO_TRAY = 0x8001;
constexpr std::uint32_t WM_SHOW_FROM_TRAY = 0x8002;
constexpr std::uint32_t WM_STARTUP_IDLE = 0x8003;
constexpr std::uint32_t WM_DEVICE_WARNING = 0x8006;
constexpr std::uint32_t WM_CLOSE_PROGRAM = 0x8007;
constexpr std::uint32_t WM_START_LAUNCH = 0x8008;
constexpr std::uint32_t WM_SHOW_WELCOME = 0x8009;
constexpr std::uint32_t WM_STEERED = 0x800A;

}  // namespace kelvaro
