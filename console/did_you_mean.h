// What somebody may have meant who spelled a name that there isn't.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelvaro::console {

// How many letters differ, case not counting, in the first 64 bytes.
std::size_t Distance(std::string a, std::string b);

// "did you mean 'Walk'?", of the name that is most like `wanted`; empty where none is like it.
// `quotes` go around the name.
std::string DidYouMean(const std::string& wanted, const std::vector<std::string>& names,
                       const char* quotes = "''");

// The same as " (did you mean 'Walk'?)", or nothing.
std::string MeantInBrackets(const std::string& wanted, const std::vector<std::string>& names);

}  // namespace kelvaro::console
