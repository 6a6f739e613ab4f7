#include <cstddef>
#include <cstdint>
#include <cstring>

#include "keys/key_action.h"
#include "keys/key_tables.h"

namespace kelvaro {

namespace {

// What a literal '<' types. Its row in KeyCharTable serves the formatter alone, since a '<' in the
// text is looked at before that table is.
constexpr KeyStep kLessThan = {0xBC, 0x33, KeyFlagImpliedShift};

// The modifiers read since the last key: merged, as they would go into the key's step, and each as
// its token had it, for the case that they can't be merged and become steps of their own.
class PendingModifiers {
 public:
  std::uint8_t Flags() const { return flags; }

  void Add(std::uint8_t tokenFlags) {
    tokens[count++] = tokenFlags;
    flags |= tokenFlags;
  }

  void FlushTo(KeySequence* steps) {
    for (std::size_t i = 0; i < count; ++i) steps->AddTail({0, 0, tokens[i]});
    Clear();
  }

  void Clear() {
    count = 0;
    flags = 0;
  }

 private:
  // Shift, ctrl and alt, each at most once: a second one flushes the first.
  std::uint8_t tokens[3] = {};
  std::size_t count = 0;
  std::uint8_t flags = 0;
};

// The four low bits, in which the shift of a typed character is a shift like any other.
std::uint8_t ModifierBits(std::uint8_t flags) {
  std::uint8_t bits = flags & 0x0F;
  if (bits & KeyFlagImpliedShift) bits |= KeyFlagShift;
  return bits;
}

// Whether a token's name is that of a pause, "P:" and digits, and its length in ms. The number
// wraps at 2^32 and only the low 16 bits of it are kept; the limit isn't told to the user.
bool ReadPause(const char* name, std::size_t length, std::uint16_t* ms) {
  if (length <= 2 || FoldUpper(static_cast<std::uint8_t>(name[0])) != 'P' || name[1] != ':') {
    return false;
  }
  std::uint32_t number = 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (name[i] < '0' || name[i] > '9') return false;
    number = number * 10 + static_cast<std::uint32_t>(name[i] - '0');
  }
  *ms = static_cast<std::uint16_t>(number);
  return true;
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
    pending.FlushTo(&action.steps);
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

  bool HoldsAll() const { return (action.actionFlags & KeyAction::HoldAllKeys) != 0; }
  // A fault: the same key or modifier can't be held twice.
  bool Clashes(std::uint8_t vk, std::uint8_t flags) {
    if (HoldsAll() && action.HasKeyOrModifier(vk, flags)) duplicateKey = true;
    return duplicateKey;
  }
  // A step with what has been pending, for `length` bytes of the text.
  bool Append(KeyStep step, std::size_t length) {
    step.flags |= pending.Flags();
    pending.Clear();
    action.steps.AddTail(step);
    at += length;
    return true;
  }

  KeyAction& action;
  const char* at;
  const char* const end;
  PendingModifiers pending;
};

bool Parser::TypedKey() {
  KeyStep step;
  if (!FindTypedKey(*at, &step)) return false;
  if (*at >= 'A' && *at <= 'Z') sawUppercase = true;
  // By vk alone: ',' clashes with '<', and 'a' with 'A'.
  return !Clashes(step.vk, 0) && Append(step, 1);
}

bool Parser::LiteralBracket() {
  pending.FlushTo(&action.steps);
  return !Clashes(kLessThan.vk, 0) && Append(kLessThan, at + 1 == end ? 1 : 2);
}

bool Parser::Token() {
  const char* const name = at + 1;
  const void* const close = std::memchr(name, '>', static_cast<std::size_t>(end - name));
  if (!close || close == name) return false;
  const auto nameLength = static_cast<std::size_t>(static_cast<const char*>(close) - name);

  std::uint16_t ms = 0;
  if (ReadPause(name, nameLength, &ms)) {
    pending.FlushTo(&action.steps);
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
    pending.FlushTo(&action.steps);
  } else if (ModifierBits(pending.Flags()) & ModifierBits(row.flags)) {
    duplicateKey = HoldsAll();
    if (duplicateKey) return false;
    pending.FlushTo(&action.steps);
  }
  if (row.vk != 0 || isMouse) return Append({row.vk, row.scan, row.flags}, length);
  pending.Add(row.flags);
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
