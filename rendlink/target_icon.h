// The picture of a launcher.
#pragma once

#include <string>
#include <vector>

namespace kelvaro::rendlink {

// The full path of a picture beside a program that has its name (or "icon") and one of the endings,
// in their order. Empty for none.
std::string PictureBeside(const std::string& target, const std::vector<const char*>& endings);

// The icon of a program, by its full path: a picture beside it that has its name (or "icon"), else
// what a desktop entry that starts it names, from the first of `folders` that has one, else that of
// Kelvaro.
std::string IconOf(const std::string& target, const std::vector<std::string>& folders);

}  // namespace kelvaro::rendlink
