// Key texts as a console takes them, with faults in words and a caret below.
#pragma once

#include <string>

#include "foundation/byte_string.h"
#include "keys/key_action.h"

namespace kelvaro::console {

struct KeyTextResult {
  int result = KeyAction::kParsed;  // of ParseKeys
  bool duplicateKey = false;
  bool faulty = false;
  std::string what;    // of a fault, in words
  std::string detail;  // the text and a caret under the fault, two lines
};

// Parses `text` into *action, under the HoldAllKeys that it has, with the Smart Check off and the
// reminder about upper case letters on.
KeyTextResult ParseKeyText(const ByteString& text, KeyAction* action);

}  // namespace kelvaro::console
