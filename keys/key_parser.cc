#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

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

void DropFront(ByteString* text, std::size_t n) {
  text->KeepRight(static_cast<std::int32_t>(text->Length() - n));
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

}  // namespace

int KeyAction::ParseKeys(const ByteString& text, bool* duplicateKey, bool smartCheck,
                         bool shiftReminder, platform::WindowHandle window) {
  const bool hasWindow = window != platform::kNoWindow;
  ByteString rest = smartCheck && hasWindow ? SmartCheck(text, window) : text;
  bool sawUppercase = false;
  *duplicateKey = false;
  steps.Clear();
  ParseSteps(&rest, &sawUppercase, duplicateKey);
  // An offset in the text as the user wrote it; one that the Smart Check lengthened can't fail.
  if (!rest.IsEmpty()) return static_cast<int>(text.Length() - rest.Length());
  return sawUppercase && shiftReminder && hasWindow ? kParsedRemind : kParsed;
}

void KeyAction::ParseSteps(ByteString* text, bool* sawUppercase, bool* duplicateKey) {
  const bool holdAll = (actionFlags & HoldAllKeys) != 0;
  PendingModifiers pending;

  while (!text->IsEmpty()) {
    const char c = (*text)[0];

    if (c != '<') {
      KeyStep step;
      if (!FindTypedKey(c, &step.vk, &step.scan, &step.flags)) return;
      if (c >= 'A' && c <= 'Z') *sawUppercase = true;
      // By vk alone: ',' clashes with '<', and 'a' with 'A'.
      if (holdAll && HasKeyOrModifier(step.vk, 0)) {
        *duplicateKey = true;
        return;
      }
      DropFront(text, 1);
      step.flags |= pending.Flags();
      pending.Clear();
      steps.AddTail(step);
      continue;
    }

    const bool lastCharacter = text->Length() == 1;
    if (lastCharacter || (*text)[1] == '<') {
      pending.FlushTo(&steps);
      if (holdAll && HasKeyOrModifier(kLessThan.vk, 0)) {
        *duplicateKey = true;
        return;
      }
      DropFront(text, lastCharacter ? 1 : 2);
      steps.AddTail(kLessThan);
      continue;
    }

    const char* name = text->Text() + 1;
    const auto* end = static_cast<const char*>(std::memchr(name, '>', text->Length() - 1));
    if (!end || end == name) return;
    const auto nameLength = static_cast<std::size_t>(end - name);
    const std::size_t tokenLength = nameLength + 2;

    std::uint16_t ms = 0;
    if (ReadPause(name, nameLength, &ms)) {
      pending.FlushTo(&steps);
      DropFront(text, tokenLength);
      steps.AddTail(
          {static_cast<std::uint8_t>(ms >> 8), static_cast<std::uint8_t>(ms & 0xFF), KeyFlagPause});
      continue;
    }

    const std::int32_t index = FindToken(name, nameLength);
    if (index < 0) return;
    const KeyToken& row = KeyTokenTable[index];
    if (holdAll && HasKeyOrModifier(row.vk, row.flags)) {
      *duplicateKey = true;
      return;
    }
    if (row.flags & KeyFlagMouse) {
      pending.FlushTo(&steps);
    } else if (ModifierBits(pending.Flags()) & ModifierBits(row.flags)) {
      if (holdAll) {
        *duplicateKey = true;
        return;
      }
      pending.FlushTo(&steps);
    }
    DropFront(text, tokenLength);
    if (row.vk == 0 && !(row.flags & KeyFlagMouse)) {
      pending.Add(row.flags);
      continue;
    }
    steps.AddTail({row.vk, row.scan, static_cast<std::uint8_t>(pending.Flags() | row.flags)});
    pending.Clear();
  }

  pending.FlushTo(&steps);
}

ByteString KeyAction::SmartCheck(const ByteString& text, platform::WindowHandle window) {
  if (text.IsEmpty() || text[0] == '<') return text;
  const std::int32_t index = FindToken(text);
  if (index < 0) return text;
  const std::string token = std::string("<") + KeyTokenTable[index].name + ">";
  const std::int32_t answer = platform::MessageBoxA(
      window,
      "The keys you have entered match a special key token, but are missing the angle brackets.\n"
      "Did you mean to type \"" +
          token + "\"?",
      "Smart Check", platform::MB_YESNO);
  return answer == platform::IDYES ? ByteString(token.c_str()) : text;
}

bool KeyAction::HasKeyOrModifier(std::uint8_t vk, std::uint8_t flags) const {
  const std::uint8_t modifiers = flags & 7;
  for (const KeySequence::Node* node = steps.head; node; node = node->next) {
    const KeyStep& step = *node->value;
    if (vk != 0 && step.vk == vk) return true;
    if (step.flags & modifiers) return true;
  }
  return false;
}

}  // namespace kelvaro
