// The characters that stand for a double quote on a command line, where one can't be written: in
// their own file beside the program a person may name others.
#pragma once

#include "foundation/byte_string.h"

namespace kelvaro {

struct QuoteChars {
  char quoteSub = '|';      // anywhere
  char leftArgQuote = '[';  // inside the value of "args="
  char rightArgQuote = ']';
};

// What QuoteChars.txt in `folder` names, and the above where it doesn't or can't be read.
QuoteChars LoadQuoteChars(const ByteString& folder);

// What stands behind `key` at the start of the text, in any letter case. False, with *rest
// untouched, when the text starts otherwise.
bool TakeKey(const ByteString& text, const char* key, ByteString* rest);

}  // namespace kelvaro
