// Columns for people.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::console {

// A line for each row, two blanks before each column, which is as wide as its widest text. Texts
// are on one line each; see TerminalText.
std::string TextTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace kelvaro::console
