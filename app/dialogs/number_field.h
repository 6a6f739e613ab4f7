// Numbers that a person types into a field, and the message for anything else.
#pragma once

#include <cstdint>
#include <optional>

#include "foundation/byte_string.h"

namespace kelvaro {

constexpr char kNotANumberText[] = "Please enter a positive integer.";
constexpr char kTooLargeText[] = "Please enter a number from 0 to 4294967295.";
constexpr char kNotANumberCaption[] = "Kelvaro";

// As ParseWholeNumber, with blanks of any kind allowed around the digits.
std::optional<std::uint64_t> ParseNumber(ByteString text);

}  // namespace kelvaro
