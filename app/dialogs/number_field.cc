#include "app/dialogs/number_field.h"

#include "app/platform/byte_text.h"

namespace kelvaro {

std::optional<std::uint64_t> ParseNumber(ByteString text) {
  text.Trim('\t', ' ');
  return platform::ParseWholeNumber(Bytes(text));
}

}  // namespace kelvaro
