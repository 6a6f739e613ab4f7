// Key texts of any bytes. The first byte of the input says whether all keys are held; the rest is
// the text. Checked: the offset of a fault lies in the text and the text is sound up to it; what is
// printed parses; printing settles after two rounds, and after one unless LWin takes part, whose
// side bit may go to a modifier.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "keys/key_action.h"

namespace {

using kelvaro::ByteString;
using kelvaro::KeyAction;
using kelvaro::KeySequence;
using kelvaro::KeyStep;

void Check(bool holds, const char* what, const ByteString& text) {
  if (holds) return;
  std::fprintf(stderr, "%s: %.*s\n", what, static_cast<int>(text.Length()), text.Text());
  std::abort();
}

ByteString Reprint(const ByteString& text) {
  KeyAction action;
  Check(action.ParseKeys(text) == KeyAction::kParsed, "printed text fails", text);
  return action.FormatKeys();
}

bool HasLWin(const KeySequence& steps) {
  for (const KeyStep& step : steps) {
    if (step.vk == 0x5B && (step.flags & kelvaro::KeyFlagLeft) &&
        !(step.flags & kelvaro::KeyFlagPause)) {
      return true;
    }
  }
  return false;
}

void CheckFault(const ByteString& text, int at, const KeyAction& failed) {
  Check(at >= 0 && static_cast<std::uint32_t>(at) < text.Length(), "offset out of the text", text);
  KeyAction sound;
  sound.actionFlags = failed.actionFlags;
  Check(sound.ParseKeys(text.Left(at)) == KeyAction::kParsed, "fault comes late", text);
  Check(sound.steps.count >= failed.steps.count, "steps of the fault", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  KeyAction action;
  action.actionFlags = bytes[0] & KeyAction::HoldAllKeys;
  ByteString text;
  text.AssignBytes(bytes + 1, static_cast<std::uint32_t>(size - 1));

  bool duplicate = false;
  const int result = action.ParseKeys(text, &duplicate);
  if (result == KeyAction::kParsed) {
    Check(!duplicate, "duplicate without a fault", text);
  } else {
    CheckFault(text, result, action);
    Check(!duplicate || action.actionFlags != 0, "duplicate without holding", text);
  }

  const ByteString printed = action.FormatKeys();
  const ByteString again = Reprint(printed);
  if (!HasLWin(action.steps)) Check(again.Equals(printed), "not a fixed point", printed);
  Check(Reprint(again).Equals(again), "never settles", printed);
  return 0;
}
