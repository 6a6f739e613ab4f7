// Numbers that a person types into a field, and what is said of anything else.
#pragma once

#include <cstdint>

#include "foundation/byte_string.h"

namespace kelvaro {

constexpr char kNotANumberText[] = "Please enter a positive integer.";
constexpr char kTooLargeText[] = "Please enter a number from 0 to 4294967295.";
constexpr char kNotANumberCaption[] = "Kelvaro";

// Decimal digits, with blanks of any kind around them allowed. A number beyond 32 bits is told as
// UINT32_MAX + 1. False, with *number untouched, for any other text.
bool ParseNumber(ByteString text, std::uint64_t* number);

}  // namespace kelvaro
