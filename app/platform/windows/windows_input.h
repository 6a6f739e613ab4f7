// Events into the system's input stream. Windows that run with more rights than this program don't
// get them.
#pragma once

#include <cstdint>

#include "app/platform/input.h"

namespace platform {

class WindowsInput : public Input {
 public:
  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override;
  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override;
};

}  // namespace platform
