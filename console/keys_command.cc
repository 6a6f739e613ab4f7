// kelvaroctl keys: the key language in both directions.

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "app/platform/byte_text.h"
#include "console/commands.h"
#include "console/console_error.h"
#include "console/json_text.h"
#include "console/key_text.h"

namespace kelvaro::console {
namespace {

// Reads "41 1e 00, 42 30 08", or nothing at all. False, with *what in words, for anything else.
bool ParseSteps(const std::string& text, KeySequence* steps, std::string* what) {
  if (text.find_first_not_of(' ') == std::string::npos) return true;
  std::size_t begin = 0;
  for (std::size_t number = 1; begin <= text.size(); ++number) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    std::istringstream words(text.substr(begin, end - begin));
    begin = end + 1;
    std::string word;
    std::string bytes;
    while (words >> word) {
      std::string byte;
      if (word.size() == 1) word.insert(0, "0");
      if (!platform::ParseHexBytes(word, &byte) || byte.size() != 1) {
        *what = "step " + std::to_string(number) + ": '" + word + "' is not a byte in hexadecimal";
        return false;
      }
      bytes += byte;
    }
    if (bytes.size() != 3) {
      *what = "step " + std::to_string(number) + ": a step is three bytes, vk scan flags";
      return false;
    }
    steps->AddTail(KeyStep{static_cast<std::uint8_t>(bytes[0]), static_cast<std::uint8_t>(bytes[1]),
                           static_cast<std::uint8_t>(bytes[2])});
  }
  return true;
}

void PrintSteps(const KeyAction& action, std::ostream& out) {
  for (const KeyStep& step : action.steps) {
    KeyAction single;
    single.steps.AddTail(step);
    char line[64];
    std::snprintf(line, sizeof line, "  vk %02x  scan %02x  flags %02x  ", step.vk, step.scan,
                  step.flags);
    out << line << Bytes(single.FormatKeys()) << '\n';
  }
}

int FormatSteps(const KeysOptions& options, Streams streams) {
  KeyAction action;
  std::string what;
  if (!ParseSteps(*options.steps, &action.steps, &what)) return Complain(streams.err, what);
  if (options.json) {
    streams.out << "{\"steps\":" << JsonSteps(action.steps)
                << ",\"text\":" << JsonText(action.FormatKeys()) << "}" << std::endl;
  } else {
    streams.out << Bytes(action.FormatKeys()) << std::endl;
  }
  return kDone;
}

}  // namespace

int KeysCommand(const KeysOptions& options, Streams streams) {
  if (options.steps) return FormatSteps(options, streams);

  KeyAction action;
  if (options.holdAll) action.actionFlags = KeyAction::HoldAllKeys;
  const KeyTextResult parsed = ParseKeyText(TextOf(options.text), &action);
  if (options.json) {
    streams.out << "{\"result\":" << parsed.result
                << ",\"duplicateKey\":" << (parsed.duplicateKey ? "true" : "false")
                << ",\"steps\":" << JsonSteps(action.steps)
                << ",\"text\":" << JsonText(action.FormatKeys()) << "}" << std::endl;
    return parsed.faulty ? kBad : kDone;
  }
  if (parsed.faulty) return Complain(streams.err, parsed.what, parsed.detail);
  streams.out << Bytes(action.FormatKeys()) << '\n';
  PrintSteps(action, streams.out);
  if (parsed.result == KeyAction::kParsedRemind) {
    streams.out << "  note: upper case letters are replayed with a shift key press\n";
  }
  streams.out << std::flush;
  return kDone;
}

}  // namespace kelvaro::console
