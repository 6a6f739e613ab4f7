#include "rendlink/desktop_entry.h"

#include <cstddef>

#include "app/platform/entry_text.h"
#include "rendlink/launcher_kind.h"

namespace kelvaro::rendlink {

using platform::EscapedForEntry;

namespace {

std::string ExecValue(const Words& words) {
  std::string value;
  for (const std::string& word : words) {
    if (!value.empty()) value += ' ';
    value += platform::ExecWord(word);
  }
  return value;
}

}  // namespace

bool DesktopEntryText(const DesktopEntry& entry, std::string* text, std::string* refusal) {
  if (entry.exec.empty() || entry.exec[0].find('=') != std::string::npos) {
    *refusal = "The path of Kelvaro has the character = in it, which a launcher can't start.";
    return false;
  }
  if (!CanHold("The launcher's name", entry.name, refusal)) return false;
  if (!CanHold("The path of the icon", entry.icon, refusal)) return false;
  if (!CanHold(entry.exec, refusal)) return false;
  if (!CanHold("The comment", entry.comment, refusal)) return false;
  *text = "[Desktop Entry]\nType=Application\nName=" + EscapedForEntry(entry.name) +
          "\nComment=" + EscapedForEntry(entry.comment) +
          "\nExec=" + EscapedForEntry(ExecValue(entry.exec)) +
          "\nIcon=" + EscapedForEntry(entry.icon) + "\nTerminal=false\nCategories=Game;\n";
  return true;
}

Words ExecWords(std::string_view exec) {
  Words words;
  std::string word;
  bool begun = false;
  bool quoted = false;
  for (std::size_t i = 0; i < exec.size(); ++i) {
    const char c = exec[i];
    if (c == '"') {
      quoted = !quoted;
      begun = true;
    } else if ((c == ' ' || c == '\t') && !quoted) {
      if (begun) words.push_back(word);
      word.clear();
      begun = false;
    } else if (c == '%' && i + 1 < exec.size()) {
      if (exec[++i] != '%') continue;
      word += '%';
      begun = true;
    } else {
      if (c == '\\' && quoted && i + 1 < exec.size()) ++i;
      word += exec[i];
      begun = true;
    }
  }
  if (begun) words.push_back(word);
  return words;
}

}  // namespace kelvaro::rendlink
