#include <cstdint>

#include "keys/key_action.h"
#include "keys/key_tables.h"

namespace kelvaro {

namespace {

// In the order of printing.
constexpr struct {
  std::uint8_t flag;
  const char* left;
  const char* right;
  const char* neither;
} kModifierNames[] = {
    {KeyFlagShift, "LShift", "RShift", "Shift"},
    {KeyFlagCtrl, "LCtrl", "RCtrl", "Ctrl"},
    {KeyFlagMouse, "LMouse", "RMouse", "MMouse"},
    {KeyFlagAlt, "LAlt", "RAlt", "Alt"},
};

void AppendToken(const char* name, ByteString* text) {
  text->AppendChar('<');
  text->Append(name);
  text->AppendChar('>');
}

// Prints the modifiers and returns the flags that are left for the key. There is one left and one
// right bit for all modifiers of a step; the first to print takes the left one, the next the right
// one, whichever way they were typed.
std::uint8_t AppendModifiers(std::uint8_t flags, ByteString* text) {
  for (const auto& names : kModifierNames) {
    if (!(flags & names.flag)) continue;
    const int side = flags & KeyFlagLeft ? KeyFlagLeft : flags & KeyFlagRight;
    AppendToken(side == KeyFlagLeft ? names.left : side != 0 ? names.right : names.neither, text);
    flags = static_cast<std::uint8_t>(flags & ~(names.flag | side));
  }
  return flags;
}

void AppendKey(std::uint8_t vk, std::uint8_t scan, std::uint8_t flags, ByteString* text) {
  if (vk >= 'A' && vk <= 'Z') {
    text->AppendChar(static_cast<char>(flags & KeyFlagImpliedShift ? vk : vk - 'A' + 'a'));
    return;
  }
  if (vk == 0) return;
  for (const KeyChar* row = KeyCharTable; row->character; ++row) {
    if (row->vk != vk || row->flags != flags) continue;
    if (row->character == ' ') {
      AppendToken("Space", text);
      return;
    }
    text->AppendChar(row->character);
    if (row->character == '<') text->AppendChar('<');  // a single one would open a token
    return;
  }
  for (const KeyToken* row = KeyTokenTable; row->name; ++row) {
    if (row->vk != vk) continue;
    // Without a scan code, as in old files, the first key of that vk will do.
    if (scan == 0 || (row->scan == scan && row->flags == flags)) {
      AppendToken(row->name, text);
      return;
    }
  }
  if (vk >= '0' && vk <= '9') text->AppendChar(static_cast<char>(vk));
}

}  // namespace

ByteString KeyAction::FormatKeys() const {
  ByteString text;
  for (const KeyStep& step : steps) {
    if (step.flags & KeyFlagPause) {
      text.Append("<P:");
      text.Append(ToDecimal(static_cast<std::uint32_t>(step.vk * 256 + step.scan), false, 0));
      text.AppendChar('>');
      continue;
    }
    AppendKey(step.vk, step.scan, AppendModifiers(step.flags, &text), &text);
  }
  return text;
}

}  // namespace kelvaro
