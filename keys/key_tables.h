// The three constant tables of the key language, for the United States keyboard whatever layout the
// system has: names between brackets, typed characters, and the scan codes of the letters. The
// order of rows counts: a formatter takes the first row that fits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/byte_string.h"
#include "keys/key_step.h"

namespace kelvaro {

struct KeyToken {
  const char* name;  // null in the sentinel
  std::uint8_t vk;
  std::uint8_t scan;
  std::uint8_t flags;
};

struct KeyChar {
  char character;  // 0 in the sentinel
  std::uint8_t vk;
  std::uint8_t scan;
  std::uint8_t flags;
};

constexpr std::size_t kKeyTokenCount = 99;
constexpr std::size_t kKeyCharCount = 33;

extern const KeyToken KeyTokenTable[kKeyTokenCount + 1];
extern const KeyChar KeyCharTable[kKeyCharCount + 1];
extern const std::uint8_t LetterScanTable[26];

// Whether a row's name and `length` bytes of `text` are equal but for the case of ASCII letters.
bool CompareNoCase(const char* rowName, const char* text, std::size_t length);
// Index of the row of that name, in any case; -1 for none.
std::int32_t FindToken(const ByteString& name);
std::int32_t FindToken(const char* text, std::size_t length);
// The key of a typed character, with KeyFlagImpliedShift where it takes the shift key. False, with
// nothing written, when no key types it: control characters and all above 0x7E.
bool FindTypedKey(char character, KeyStep* key);

}  // namespace kelvaro
