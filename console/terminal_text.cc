#include "console/terminal_text.h"

#include <algorithm>

#include "app/platform/byte_text.h"
#include "console/json_text.h"

namespace kelvaro::console {
namespace {

bool IsControl(const char* bytes, std::size_t length) {
  const auto first = static_cast<unsigned char>(bytes[0]);
  if (length == 1) return first < 0x20 || first == 0x7F;
  // U+0080 to U+009F: the same orders in one byte less.
  return length == 2 && first == 0xC2 && static_cast<unsigned char>(bytes[1]) < 0xA0;
}

bool BeginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

}  // namespace

std::string TerminalText(const std::string& text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = platform::Utf8Sequence({text.data() + i, text.size() - i});
    if (length == 0 || IsControl(text.data() + i, length)) {
      shown += '?';
    } else {
      shown.append(text, i, length);
    }
    i += length == 0 ? 1 : length;
  }
  return shown;
}

std::string TerminalText(const ByteString& text) { return TerminalText(Bytes(text)); }

std::size_t Characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::string FirstCharacters(const std::string& text, std::size_t most) {
  std::size_t count = 0;
  const auto end = std::find_if(text.begin(), text.end(),
                                [&](char c) { return BeginsCharacter(c) && count++ == most; });
  return {text.begin(), end};
}

}  // namespace kelvaro::console
