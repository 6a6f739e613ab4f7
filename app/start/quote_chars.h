// The characters that stand for a double quote on a command line, where one can't be written: in
// their own file, QuoteChars.txt, a person may name others.
#pragma once

#include "foundation/byte_string.h"

namespace kelvaro {

struct QuoteChars {
  char quoteSub = '|';      // anywhere
  char leftArgQuote = '[';  // inside the value of "args="
  char rightArgQuote = ']';
};

// What that file in the folder of data names, or where there is none the one beside the program;
// the above where it names nothing or can't be read.
QuoteChars LoadQuoteChars();

// What stands behind `key` at the start of the text, in any letter case. False, with *rest
// untouched, when the text starts otherwise.
bool TakeKey(const ByteString& text, const char* key, ByteString* rest);

}  // namespace kelvaro
