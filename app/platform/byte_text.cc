#include "app/platform/byte_text.h"

#include <charconv>

namespace platform {
namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::size_t Utf8Sequence(std::string_view bytes) {
  if (bytes.empty()) return 0;
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const unsigned char first = p[0];
  if (first < 0x80) return 1;
  std::size_t whole = 0;
  unsigned char least = 0x80;
  unsigned char most = 0xBF;
  if (first >= 0xC2 && first <= 0xDF) {
    whole = 2;
  } else if (first >= 0xE0 && first <= 0xEF) {
    whole = 3;
    if (first == 0xE0) least = 0xA0;  // shorter forms are not allowed
    if (first == 0xED) most = 0x9F;   // nor are surrogates
  } else if (first >= 0xF0 && first <= 0xF4) {
    whole = 4;
    if (first == 0xF0) least = 0x90;
    if (first == 0xF4) most = 0x8F;  // nothing above U+10FFFF
  } else {
    return 0;
  }
  if (whole > bytes.size() || p[1] < least || p[1] > most) return 0;
  for (std::size_t i = 2; i < whole; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0;
  }
  return whole;
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t step = Utf8Sequence(bytes);
    if (step == 0) return false;
    bytes.remove_prefix(step);
  }
  return true;
}

std::string Utf8Of(std::uint32_t character) {
  if (character < 0x80) return std::string(1, static_cast<char>(character));
  std::string bytes;
  const auto add = [&bytes](std::uint32_t byte) { bytes += static_cast<char>(byte); };
  if (character < 0x800) {
    add(0xC0 | character >> 6);
  } else {
    if (character < 0x10000) {
      add(0xE0 | character >> 12);
    } else {
      add(0xF0 | character >> 18);
      add(0x80 | (character >> 12 & 0x3F));
    }
    add(0x80 | (character >> 6 & 0x3F));
  }
  add(0x80 | (character & 0x3F));
  return bytes;
}

std::string HexBytes(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string hex;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

bool ParseHexBytes(std::string_view hex, std::string* bytes) {
  if (hex.size() % 2 != 0) return false;
  std::string parsed;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const int high = HexDigit(hex[i]);
    const int low = HexDigit(hex[i + 1]);
    if (high < 0 || low < 0) return false;
    parsed += static_cast<char>(high * 16 + low);
  }
  *bytes = parsed;
  return true;
}

std::optional<std::uint64_t> ParseWholeNumber(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  if (stop != end || fault == std::errc::invalid_argument) return std::nullopt;
  return fault == std::errc() ? number : UINT64_MAX;
}

}  // namespace platform
