#include "engine/mouse_settings.h"

namespace kelvaro {

std::uint64_t MouseButtonMask(std::uint16_t index) {
  const auto mask = static_cast<std::int32_t>(std::uint32_t{1} << (index % 32));
  return static_cast<std::uint64_t>(std::int64_t{mask});
}

}  // namespace kelvaro
