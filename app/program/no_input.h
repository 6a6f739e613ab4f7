// Stands in where the system lets nobody send keys: the window is still useful.
#pragma once

#include "app/platform/input.h"

namespace kelvaro {

class NoInput final : public platform::Input {
 public:
  void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override {}
  void mouse_event(std::uint32_t, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {}
};

}  // namespace kelvaro
