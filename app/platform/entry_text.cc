#include "app/platform/entry_text.h"

namespace platform {
namespace {

constexpr std::string_view kCodes = "sntr\\";
constexpr std::string_view kMeanings = " \n\t\r\\";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

std::string EscapedForEntry(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t code = kMeanings.find(text[i]);
    // A blank at either end would be passed over.
    if (code == std::string_view::npos || (text[i] == ' ' && i > 0 && i + 1 < text.size())) {
      out += text[i];
    } else {
      out += '\\';
      out += kCodes[code];
    }
  }
  return out;
}

std::string UnescapedFromEntry(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t code =
        text[i] == '\\' && i + 1 < text.size() ? kCodes.find(text[i + 1]) : std::string_view::npos;
    if (code == std::string_view::npos) {
      out += text[i];
    } else {
      out += kMeanings[code];
      ++i;
    }
  }
  return out;
}

std::string ExecWord(std::string_view word) {
  std::string out;
  const bool quoted = word.empty() || word.find_first_of(kReservedInExec) != std::string_view::npos;
  if (quoted) out += '"';
  for (const char c : word) {
    if (kEscapedInQuotes.find(c) != std::string_view::npos) out += '\\';
    if (c == '%') out += '%';
    out += c;
  }
  if (quoted) out += '"';
  return out;
}

std::map<std::string, std::string> ReadEntry(std::string_view text) {
  std::map<std::string, std::string> values;
  bool inside = false;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.starts_with('[')) inside = line == "[Desktop Entry]";
    const std::size_t equals = line.find('=');
    if (!inside || line.starts_with('#') || equals == std::string_view::npos) continue;
    values.emplace(Trimmed(line.substr(0, equals)),
                   UnescapedFromEntry(Trimmed(line.substr(equals + 1))));
  }
  return values;
}

}  // namespace platform
