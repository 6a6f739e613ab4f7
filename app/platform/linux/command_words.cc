#include "app/platform/linux/command_words.h"

namespace platform {
namespace {

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

}  // namespace

std::vector<std::string> CommandWords(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool begun = false;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      begun = true;
    } else if (IsBlank(c) && !quoted) {
      if (begun) words.push_back(std::move(word));
      word.clear();
      begun = false;
    } else {
      word += c;
      begun = true;
    }
  }
  if (begun) words.push_back(std::move(word));
  return words;
}

}  // namespace platform
