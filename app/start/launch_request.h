// What a command line of the program asks for: which profiles, and a game to start with them.
#pragma once

#include "app/start/quote_chars.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

struct LaunchRequest {
  LinkedList<ByteString> profiles;  // in their order
  ByteString target;
  ByteString args;
  ByteString dir;
};

// Splits a command line into tokens at blanks and double quotes; see launch_request.cc.
void SplitCommandLine(const ByteString& text, LinkedList<ByteString>* list);

// Of a whole command line, the program's own path in front.
LaunchRequest ReadCommandLine(const ByteString& line, const QuoteChars& quoteChars);

}  // namespace kelvaro
