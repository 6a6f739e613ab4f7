#include "app/platform/linux/command_words.h"

namespace platform {
namespace {

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

std::string Quoted(const std::string& word) {
  bool plain = !word.empty();
  for (const char c : word) plain = plain && !IsBlank(c);
  if (plain) return word;
  const std::size_t equals = word.find('=');
  const std::size_t value = equals == std::string::npos ? 0 : equals + 1;
  return word.substr(0, value) + '"' + word.substr(value) + '"';
}

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

std::string CommandLineOf(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    line += Quoted(word);
  }
  return line;
}

}  // namespace platform
