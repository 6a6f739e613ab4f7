// The system's words, and where a person's folders are.
#pragma once

#include <string>

#include "app/platform/files.h"

namespace platform {

class WindowsSystem : public System {
 public:
  std::string FormatMessageA(std::uint32_t code) override;
  // The roaming one: it goes with the person from machine to machine, as small files may.
  std::string GetUserDataFolder() override;
};

}  // namespace platform
