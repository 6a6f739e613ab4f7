#include "console/json_reader.h"

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

#include "app/platform/byte_text.h"
#include "console/json_text.h"

namespace kelvaro::console {
namespace {

// No profile nests deeper than controls, actions, steps and a step; a reader that recurses must
// stop somewhere.
constexpr int kDeepestNesting = 32;

// Names and values that are quoted in a message.
constexpr std::size_t kLongestQuote = 80;

std::string Shortened(const std::string& text) {
  return text.size() <= kLongestQuote ? text : text.substr(0, kLongestQuote) + "...";
}

// Sets where `offset` lies. A lone carriage return ends a line, too, as it does for the parser.
void SetPlace(const std::string& text, std::size_t offset, JsonFault* fault) {
  fault->line = 1;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
    const bool crlf = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] != '\n' && (text[i] != '\r' || crlf)) continue;
    ++fault->line;
    begin = i + 1;
  }
  fault->column = offset - begin + 1;
}

// Offset of the bracket that opens one level too many, npos when there is none. Looks at brackets
// outside strings only, so it is right for JSON and harmless for anything else.
std::size_t FindTooDeep(const std::string& text) {
  int depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') {
        ++i;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > kDeepestNesting) return i;
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return std::string::npos;
}

// A whole number from 0 to the most that the target holds.
template <typename T>
void ReadWhole(const JsonElement& element, T* out) {
  constexpr std::uint64_t most = std::numeric_limits<T>::max();
  if (!element.value.isNumeric()) return element.Fail("not a number");
  if (!element.value.isUInt64() || element.value.asUInt64() > most) {
    return element.Fail("not a whole number from 0 to " + std::to_string(most));
  }
  *out = static_cast<T>(element.value.asUInt64());
}

// Turns the parser's "* Line 3, Column 5\n  Syntax error: ...\n" into its parts.
void SplitParserError(const std::string& errors, JsonFault* fault) {
  unsigned line = 0;
  unsigned column = 0;
  if (std::sscanf(errors.c_str(), "* Line %u, Column %u", &line, &column) != 2) {
    fault->what = "not JSON";
    return;
  }
  const std::size_t begin = errors.find('\n');
  const std::size_t end = begin == std::string::npos ? begin : errors.find('\n', begin + 1);
  std::string what = begin == std::string::npos ? "" : errors.substr(begin + 1, end - begin - 1);
  what.erase(0, what.find_first_not_of(' '));
  if (!what.empty() && what.back() == '.') what.pop_back();
  fault->line = line;
  fault->column = column;
  fault->what = what.empty() ? "not JSON" : Shortened(what);
}

}  // namespace

std::string JsonFault::Text(const std::string& file) const {
  std::string text = file + ":";
  if (line > 0) text += std::to_string(line) + ":";
  if (column > 0) text += std::to_string(column) + ":";
  text += ' ';
  if (!member.empty()) text += member + ": ";
  return text + what;
}

bool JsonDocument::Parse(const std::string& text) {
  source = text;
  // The parser would take it for the end.
  if (const std::size_t offset = source.find('\0'); offset != std::string::npos) {
    FailAt(offset, {}, "a zero byte");
    return false;
  }
  if (const std::size_t offset = FindTooDeep(source); offset != std::string::npos) {
    FailAt(offset, {}, "nested too deeply");
    return false;
  }
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["stackLimit"] = kDeepestNesting + 2;  // it counts the root and the value as well
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  std::string errors;
  try {
    if (!reader->parse(source.data(), source.data() + source.size(), &root, &errors)) {
      failed = true;
      SplitParserError(errors, &fault);
      return false;
    }
  } catch (const std::exception& problem) {
    failed = true;
    fault.what = problem.what();
    return false;
  }
  if (!root.isObject()) Root().Fail("not an object");
  return !failed;
}

void JsonElement::Fail(const std::string& what, const std::string& detail) const {
  if (document.failed) return;
  document.FailAt(static_cast<std::size_t>(value.getOffsetStart()), name, what);
  document.fault.detail = detail;
}

void JsonDocument::FailAt(std::size_t offset, const std::string& member, const std::string& what) {
  failed = true;
  SetPlace(source, offset, &fault);
  fault.member = member;
  fault.what = what;
}

void Read(const JsonElement& element, bool& flag) {
  if (!element.value.isBool()) return element.Fail("neither true nor false");
  flag = element.value.asBool();
}

void Read(const JsonElement& element, std::uint8_t& flag) {
  bool truth = flag != 0;
  Read(element, truth);
  flag = truth;
}

void Read(const JsonElement& element, std::uint16_t& number) { ReadWhole(element, &number); }

void Read(const JsonElement& element, std::uint32_t& number) { ReadWhole(element, &number); }

void Read(const JsonElement& element, std::int32_t& number) {
  if (!element.value.isNumeric()) return element.Fail("not a number");
  if (!element.value.isInt()) return element.Fail("not a whole number of 32 bits");
  number = element.value.asInt();
}

void Read(const JsonElement& element, std::uint64_t& mask) {
  if (!element.value.isString()) return ReadWhole(element, &mask);
  const std::string text = element.value.asString();
  const bool hex = text.size() > 2 && text.size() <= 18 && text[0] == '0' && text[1] == 'x' &&
                   text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
  if (!hex) return element.Fail("not a mask such as \"0x5\"");
  mask = std::strtoull(text.c_str(), nullptr, 16);
}

void Read(const JsonElement& element, ByteString& text) {
  const Json::Value& value = element.value;
  std::string bytes;
  if (value.isString()) {
    bytes = value.asString();
    if (!platform::IsUtf8(bytes)) {
      return element.Fail("not valid UTF-8; other bytes are written {\"bytes\":\"<hex>\"}");
    }
  } else if (!value.isObject() || value.size() != 1 || !value["bytes"].isString() ||
             !platform::ParseHexBytes(value["bytes"].asString(), &bytes)) {
    return element.Fail("not a text");
  }
  text = TextOf(bytes);
}

void ReadByte(const JsonElement& element, std::uint8_t* byte) { ReadWhole(element, byte); }

JsonObject::JsonObject(const JsonElement& element) : element(element) {
  if (!element.value.isObject()) element.Fail("not an object");
}

std::optional<JsonElement> JsonObject::Find(const char* name) {
  known.insert(name);
  if (!element.value.isObject() || !element.value.isMember(name)) return std::nullopt;
  return MemberOf(name);
}

void JsonObject::RefuseOthers() {
  if (!element.value.isObject()) return;
  for (const std::string& name : element.value.getMemberNames()) {
    if (!known.contains(name)) MemberOf(name).Fail("unknown member");
  }
}

JsonElement JsonObject::MemberOf(const std::string& name) const {
  const std::string path = element.name.empty() ? "" : element.name + ".";
  return {element.document, element.value[name], path + Shortened(name)};
}

}  // namespace kelvaro::console
