#include "console/key_text.h"

#include "app/platform/byte_text.h"
#include "console/did_you_mean.h"
#include "console/json_text.h"
#include "keys/key_tables.h"

namespace kelvaro::console {
namespace {

// A bad name is quoted up to here.
constexpr std::size_t kLongestKeyName = 40;

// `text` on one line, one column a character, with a caret below the byte at `offset`.
std::string WithCaret(const std::string& text, std::size_t offset) {
  std::string line = "  ";
  std::string caret = "  ";
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = platform::Utf8Sequence({text.data() + i, text.size() - i});
    const auto byte = static_cast<unsigned char>(text[i]);
    if (length == 0 || byte < 0x20 || byte == 0x7F) {
      line += '?';
    } else {
      line += text.substr(i, length);
    }
    if (i < offset) caret += ' ';
    i += length == 0 ? 1 : length;
  }
  return line + "\n" + caret + "^\n";
}

std::string FaultWords(const std::string& rest, bool duplicateKey) {
  if (duplicateKey) return "a key can't be there twice when all keys are held down";
  if (rest[0] != '<') return "no key types this character";
  const std::size_t end = rest.find('>');
  if (end == std::string::npos) return "a '<' without its '>' (write << for the character itself)";
  std::string name = rest.substr(1, end - 1);
  std::vector<std::string> names;
  for (const KeyToken* row = KeyTokenTable; row->name; ++row) names.emplace_back(row->name);
  const std::string meant = DidYouMean(name, names, "<>");
  if (name.size() > kLongestKeyName) name = name.substr(0, kLongestKeyName) + "...";
  return "there is no key <" + name + "> (" + (meant.empty() ? "" : meant + " ") +
         "write << for the character itself)";
}

}  // namespace

KeyTextResult ParseKeyText(const ByteString& text, KeyAction* action) {
  KeyTextResult outcome;
  outcome.result = action->ParseKeys(text, &outcome.duplicateKey, true);
  outcome.faulty = outcome.result >= 0;
  if (outcome.faulty) {
    const std::string bytes = Bytes(text);
    const auto offset = static_cast<std::size_t>(outcome.result);
    outcome.what = FaultWords(bytes.substr(offset), outcome.duplicateKey);
    outcome.detail = WithCaret(bytes, offset);
  }
  return outcome;
}

}  // namespace kelvaro::console
