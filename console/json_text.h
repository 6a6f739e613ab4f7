// Texts and numbers as they are spelled in the JSON that kelvaroctl prints.
#pragma once

#include <cstdint>
#include <string>

#include "foundation/byte_string.h"
#include "keys/key_step.h"

namespace kelvaro::console {

// Bytes of the well-formed UTF-8 sequence that `bytes` starts with, 1 to 4; 0 when there is none.
std::size_t Utf8Sequence(const char* bytes, std::size_t length);
bool IsUtf8(const char* bytes, std::size_t length);

// A JSON string where the bytes are UTF-8, otherwise {"bytes":"<hex>"}.
std::string JsonText(const ByteString& text);
std::string JsonText(const std::string& text);
// [[65,30,0],[66,48,8]]
std::string JsonSteps(const KeySequence& steps);

// The bytes of a ByteString, zeros included.
std::string Bytes(const ByteString& text);
ByteString FromBytes(const std::string& bytes);

std::string HexBytes(const std::string& bytes);
// False, with *bytes untouched, unless `hex` is pairs of hex digits.
bool ParseHexBytes(const std::string& hex, std::string* bytes);

}  // namespace kelvaro::console
