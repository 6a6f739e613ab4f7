#include "app/platform/file_pattern.h"

#include <algorithm>

namespace platform {
namespace {

char Fold(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

bool FitsPattern(std::string_view name, std::string_view pattern) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t n = 0;
  std::size_t p = 0;
  // Only the last star is ever taken back: what fits before it needs no second try.
  std::size_t star = kNone;
  std::size_t starEnd = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      starEnd = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || Fold(pattern[p]) == Fold(name[n]))) {
      ++p;
      ++n;
    } else if (star != kNone) {
      p = star + 1;
      n = ++starEnd;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == kNone;
}

bool HasWildcards(std::string_view pattern) {
  return pattern.find_first_of("*?") != std::string_view::npos;
}

std::string Folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), Fold);
  return text;
}

bool SameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Fold(x) == Fold(y); });
}

}  // namespace platform
