// Names that a person types only the beginning of.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::console {

// Those of `names` that begin with `text`, byte for byte, each once, in order. None for an empty
// text.
std::vector<std::string> NamesThatBegin(const std::vector<std::string>& names,
                                        const std::string& text);

// "'Plane', 'Platformer'"
std::string QuotedList(const std::vector<std::string>& names);

// "'Pl' begins several names: 'Plane', 'Platformer'"
std::string SeveralNames(const std::string& text, const std::vector<std::string>& names);

}  // namespace kelvaro::console
