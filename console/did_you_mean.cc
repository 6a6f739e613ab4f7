#include "console/did_you_mean.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "foundation/byte_string.h"

namespace kelvaro::console {
namespace {

constexpr std::size_t kNameCompared = 64;  // bytes
constexpr std::size_t kShortestStart = 3;  // letters that say which name is begun

void Fold(std::string* text) {
  text->resize(std::min(text->size(), kNameCompared));
  for (char& c : *text) c = static_cast<char>(FoldUpper(static_cast<std::uint8_t>(c)));
}

bool Begins(std::string name, std::string start) {
  Fold(&name);
  Fold(&start);
  return start.size() >= kShortestStart && name.starts_with(start);
}

// Slips of the finger, not other words: two swapped letters are two that differ.
std::size_t MostSlips(std::size_t length) {
  if (length < 4) return 1;
  return length < 8 ? 2 : 3;
}

}  // namespace

std::size_t Distance(std::string a, std::string b) {
  Fold(&a);
  Fold(&b);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
    }
  }
  return row.back();
}

std::string DidYouMean(const std::string& wanted, const std::vector<std::string>& names,
                       const char* quotes) {
  const std::string* best = nullptr;
  std::size_t least = MostSlips(wanted.size()) + 1;
  for (const std::string& name : names) {
    // All letters replaced is another word.
    std::size_t slips = Distance(wanted, name);
    if (slips >= std::min(wanted.size(), name.size())) slips = least;
    if (Begins(name, wanted)) slips = 1;
    if (slips >= least) continue;
    least = slips;
    best = &name;
  }
  return best ? std::string("did you mean ") + quotes[0] + *best + quotes[1] + "?" : std::string();
}

std::string MeantInBrackets(const std::string& wanted, const std::vector<std::string>& names) {
  const std::string meant = DidYouMean(wanted, names);
  return meant.empty() ? "" : " (" + meant + ")";
}

}  // namespace kelvaro::console
