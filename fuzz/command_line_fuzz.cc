// The command line of a shortcut, and the file that names its quote characters. The first line feed
// parts the file from the command line.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/platform/simulation/simulation.h"
#include "app/start/launch_request.h"
#include "app/start/quote_chars.h"

using namespace kelvaro;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\n');
  const std::string line = input.substr(0, end);
  platform::simulation::Simulation sim;
  if (end != std::string::npos) sim.Disk().PutFile("/game/QuoteChars.txt", input.substr(end + 1));
  const QuoteChars quotes = LoadQuoteChars();
  // Each of them stands in the file, or is the usual one.
  for (const char c : {quotes.quoteSub, quotes.leftArgQuote, quotes.rightArgQuote})
    if (c != '|' && c != '[' && c != ']' && input.find(c) == std::string::npos) std::abort();

  LinkedList<ByteString> tokens;
  SplitCommandLine(TextOf(line), &tokens);
  std::size_t bytes = 0;
  for (const ByteString& token : tokens) {
    std::int32_t at = 0;
    if (token.IsEmpty() || token.FindChar('"', &at)) std::abort();
    bytes += token.Length();
  }
  if (bytes > line.size()) std::abort();
  return 0;
}
