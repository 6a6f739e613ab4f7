#include "app/platform/windows/windows_input.h"

#include "app/platform/windows/win32.h"

namespace platform {

void WindowsInput::keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                               std::uint32_t extra) {
  ::keybd_event(vk, scan, flags, extra);
}

void WindowsInput::mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy,
                               std::int32_t data, std::uint32_t extra) {
  ::mouse_event(flags, static_cast<DWORD>(dx), static_cast<DWORD>(dy), static_cast<DWORD>(data),
                extra);
}

}  // namespace platform
