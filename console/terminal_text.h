// Texts out of files, as a terminal may have them.
#pragma once

#include <string>

#include "foundation/byte_string.h"

namespace kelvaro::console {

// One line in which everything that is no character, or that a terminal obeys, is a '?'.
std::string TerminalText(const std::string& text);
std::string TerminalText(const ByteString& text);

// Of a text on one line: its characters, combining ones and wide ones as one each.
std::size_t Characters(const std::string& text);

// The text up to that many of its characters.
std::string FirstCharacters(const std::string& text, std::size_t most);

}  // namespace kelvaro::console
