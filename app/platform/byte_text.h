// Bytes that may be text, bytes spelled in hexadecimal, and numbers in decimal.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Bytes of the well-formed UTF-8 sequence that `bytes` starts with, 1 to 4; 0 when there is none.
std::size_t Utf8Sequence(std::string_view bytes);
bool IsUtf8(std::string_view bytes);
// One character, a number up to 0x10FFFF.
std::string Utf8Of(std::uint32_t character);

std::string HexBytes(std::string_view bytes);
// False, with *bytes untouched, unless `hex` is pairs of hex digits.
bool ParseHexBytes(std::string_view hex, std::string* bytes);

// The number that `text` spells with decimal digits and nothing else; none for any other text. One
// beyond 64 bits counts as UINT64_MAX.
std::optional<std::uint64_t> ParseWholeNumber(std::string_view text);

}  // namespace platform
