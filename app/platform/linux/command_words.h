// One command line as the words that a program gets: parted by blanks (any byte from 0 to 32)
// outside of double quotes, which are dropped and may begin and end in the middle of a word. An
// empty pair of quotes is an empty word; an open one reaches to the end. There is no other way to
// quote.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

std::vector<std::string> CommandWords(std::string_view line);

}  // namespace platform
