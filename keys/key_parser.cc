#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "keys/key_action.h"
#include "keys/key_tables.h"

namespace kelvaro {

namespace {

// What a literal '<' types. Its row in KeyCharTable serves the formatter alone, since a '<' in the
// text is looked at before that table is.
constexpr KeyStep kLessThan = {0xBC, 0x33, KeyFlagImpliedShift};

constexpr std::uint8_t kModifierFlags = KeyFlagShift | KeyFlagCtrl | KeyFlagAlt;

// Whether a token's name is that of a pause, "P:" and digits, and its length in ms. The number
// wraps at 2^32 and only the low 16 bits of it are kept; the limit isn't told to the user.
bool ReadPause(const char* name, std::size_t length, std::uint16_t* ms) {
  if (length <= 2 || FoldUpper(static_cast<std::uint8_t>(name[0])) != 'P' || name[1] != ':') {
    return false;
  }
  const ByteString digits = TextOf({name + 2, length - 2});
  *ms = static_cast<std::uint16_t>(ToUnsigned(digits));
  return IsAllDigits(digits);
}

// Appends steps while it goes through a text.
class Parser {
 public:
  Parser(KeyAction* action, const ByteString& text)
      : action(*action), at(text.Text()), end(at + text.Length()) {}

  // How much of the text is left at the fault; 0 on success.
  std::uint32_t Run() {
    while (at != end) {
      if (!Next()) return static_cast<std::uint32_t>(end - at);
    }
    Flush();
    return 0;
  }

  bool sawUppercase = false;
  bool duplicateKey = false;

 private:
  // One character or token. False at a fault, with the text as it was.
  bool Next() {
    if (*at != '<') return TypedKey();
    if (at + 1 == end || at[1] == '<') return LiteralBracket();
    return Token();
  }
  bool TypedKey();
  bool LiteralBracket();
  bool Token();
  bool TableToken(const KeyToken& row, std::size_t length);

  // A fault: the same key or modifier can't be held twice.
  bool Clashes(std::uint8_t vk, std::uint8_t flags) {
    if (action.HoldsAllKeys() && action.HasKeyOrModifier(vk, flags)) duplicateKey = true;
    return duplicateKey;
  }
  // What is pending, merged as it would go into the next key's step.
  std::uint8_t PendingFlags() const { return pending[0] | pending[1] | pending[2]; }
  // A step with what is pending, for `length` bytes of the text.
  bool Append(KeyStep step, std::size_t length) {
    step.flags |= PendingFlags();
    std::fill(std::begin(pending), std::end(pending), std::uint8_t{0});
    action.steps.AddTail(step);
    at += length;
    return true;
  }
  // What is pending can't be merged with what comes: each token becomes a step of its own.
  void Flush() {
    for (std::uint8_t& flags : pending) {
      if (flags != 0) action.steps.AddTail({0, 0, flags});
      flags = 0;
    }
  }

  KeyAction& action;
  const char* at;
  const char* const end;
  // The modifiers read since the last key, each as its token had it, then zeros. Shift, ctrl and
  // alt come at most once each, since a second one flushes the first.
  std::uint8_t pending[3] = {};
};

bool Parser::TypedKey() {
  KeyStep step;
  if (!FindTypedKey(*at, &step)) return false;
  if (*at >= 'A' && *at <= 'Z') sawUppercase = true;
  // By vk alone: ',' clashes with '<', and 'a' with 'A'.
  return !Clashes(step.vk, 0) && Append(step, 1);
}

bool Parser::LiteralBracket() {
  Flush();
  return !Clashes(kLessThan.vk, 0) && Append(kLessThan, at + 1 == end ? 1 : 2);
}

bool Parser::Token() {
  const char* const name = at + 1;
  const void* const close = std::memchr(name, '>', static_cast<std::size_t>(end - name));
  if (!close) return false;
  const auto nameLength = static_cast<std::size_t>(static_cast<const char*>(close) - name);

  std::uint16_t ms = 0;
  if (ReadPause(name, nameLength, &ms)) {
    Flush();
    return Append(
        {static_cast<std::uint8_t>(ms >> 8), static_cast<std::uint8_t>(ms & 0xFF), KeyFlagPause},
        nameLength + 2);
  }
  const std::int32_t row = FindToken(name, nameLength);
  return row >= 0 && TableToken(KeyTokenTable[row], nameLength + 2);
}

bool Parser::TableToken(const KeyToken& row, std::size_t length) {
  if (Clashes(row.vk, row.flags)) return false;
  const bool isMouse = (row.flags & KeyFlagMouse) != 0;
  if (isMouse) {
    Flush();
  } else if (PendingFlags() & row.flags & kModifierFlags) {
    duplicateKey = action.HoldsAllKeys();
    if (duplicateKey) return false;
    Flush();
  }
  if (row.vk != 0 || isMouse) return Append({row.vk, row.scan, row.flags}, length);
  *std::find(std::begin(pending), std::end(pending), 0) = row.flags;
  at += length;
  return true;
}

}  // namespace

int KeyAction::ParseKeys(const ByteString& text, bool* duplicateKey, bool shiftReminder) {
  ByteString rest = text;
  bool sawUppercase = false;
  bool duplicate = false;
  steps.Clear();
  ParseSteps(&rest, &sawUppercase, &duplicate);
  if (duplicateKey) *duplicateKey = duplicate;
  if (!rest.IsEmpty()) return static_cast<int>(text.Length() - rest.Length());
  return sawUppercase && shiftReminder ? kParsedRemind : kParsed;
}

void KeyAction::ParseSteps(ByteString* text, bool* sawUppercase, bool* duplicateKey) {
  Parser parser(this, *text);
  text->KeepRight(static_cast<std::int32_t>(parser.Run()));
  if (parser.sawUppercase) *sawUppercase = true;
  if (parser.duplicateKey) *duplicateKey = true;
}

ByteString KeyAction::SmartCheck(const ByteString& text) {
  const std::int32_t row = FindToken(text);
  return row < 0 ? ByteString() : ByteString("<").Concat(KeyTokenTable[row].name).Concat(">");
}

bool KeyAction::HasKeyOrModifier(std::uint8_t vk, std::uint8_t flags) const {
  const std::uint8_t modifiers = flags & 7;
  for (const KeyStep& step : steps) {
    if (vk != 0 && step.vk == vk) return true;
    if (step.flags & modifiers) return true;
  }
  return false;
}

}  // namespace kelvaro
