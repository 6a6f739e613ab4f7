#include "app/start/launch_request.h"

namespace kelvaro {
namespace {

constexpr std::uint8_t kLastBlank = 32;  // every byte up to it counts as one

bool IsBlank(char c) { return static_cast<std::uint8_t>(c) <= kLastBlank; }

}  // namespace

// Between double quotes, which are dropped, blanks don't end a token. The quote that ends the
// quoted part ends the token, too: a"b c"d is two tokens.
void SplitCommandLine(const ByteString& text, LinkedList<ByteString>* list) {
  ByteString line = text;
  line.Trim(0, kLastBlank);
  std::uint32_t at = 0;
  while (at < line.Length()) {
    ByteString token;
    bool quoted = false;
    while (at < line.Length()) {
      const char c = line[at++];
      if (c == '"') {
        if (quoted) break;
        quoted = true;
      } else if (!quoted && IsBlank(c)) {
        break;
      } else {
        token.AppendChar(c);
      }
    }
    if (!token.IsEmpty()) list->AddTail(token);
  }
}

LaunchRequest ReadCommandLine(const ByteString& line, const QuoteChars& quoteChars) {
  const ByteString quote('"');
  ByteString quoted = line;
  quoted.ReplaceAll(ByteString(quoteChars.quoteSub), quote);
  LinkedList<ByteString> tokens;
  SplitCommandLine(quoted, &tokens);
  LaunchRequest request;
  // The first one is the program itself.
  for (const auto* node = tokens.head ? tokens.head->next : nullptr; node; node = node->next) {
    const ByteString& token = *node->value;
    ByteString value;
    if (TakeKey(token, "profile=", &value)) {
      request.profiles.AddTail(value);
    } else if (TakeKey(token, "target=", &value)) {
      request.target = value;
    } else if (TakeKey(token, "args=", &value)) {
      value.ReplaceAll(ByteString(quoteChars.leftArgQuote), quote);
      value.ReplaceAll(ByteString(quoteChars.rightArgQuote), quote);
      request.args = value;
    } else if (TakeKey(token, "dir=", &value)) {
      request.dir = value;
    } else if (request.profiles.count == 0 && token.Find("=") < 0) {
      request.profiles.AddTail(token);
    }
  }
  return request;
}

}  // namespace kelvaro
