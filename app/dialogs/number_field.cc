#include "app/dialogs/number_field.h"

#include <algorithm>

namespace kelvaro {

bool ParseNumber(ByteString text, std::uint64_t* number) {
  constexpr std::uint64_t kTooLarge = std::uint64_t{UINT32_MAX} + 1;
  text.Trim('\t', ' ');
  if (!IsAllDigits(text)) return false;
  std::uint64_t value = 0;
  for (std::uint32_t i = 0; i < text.Length(); ++i)
    value = std::min(value * 10 + static_cast<std::uint64_t>(text[i] - '0'), kTooLarge);
  *number = value;
  return true;
}

}  // namespace kelvaro
