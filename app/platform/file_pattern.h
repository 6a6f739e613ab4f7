// How the pattern of a search is compared with names, the same on every platform that has to do it
// itself.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// Whether the whole of `name` fits: `*` stands for any bytes or none, `?` for any one, all else for
// itself, letters of ASCII in either case. "*.*" asks for a dot like any other pattern. Takes time
// in proportion to the product of the two lengths at most.
bool FitsPattern(std::string_view name, std::string_view pattern);

// Whether the pattern has `*` or `?`.
bool HasWildcards(std::string_view pattern);

// Its ASCII letters small.
std::string Folded(std::string text);

// Equal but for the case of ASCII letters.
bool SameName(std::string_view a, std::string_view b);

}  // namespace platform
