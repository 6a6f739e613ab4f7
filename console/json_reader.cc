#include "console/json_reader.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

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

// Number of the line, from 1, on which `offset` lies. A lone carriage return ends a line, too, as
// it does for the parser.
std::size_t LineAt(const std::string& text, std::size_t offset) {
  std::size_t line = 1;
  for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
    const bool crlf = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] == '\n' || (text[i] == '\r' && !crlf)) ++line;
  }
  return line;
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
  fault->what =
      "column " + std::to_string(column) + ": " + (what.empty() ? "not JSON" : Shortened(what));
}

}  // namespace

std::string JsonFault::Text(const std::string& file) const {
  std::string text = file + ":";
  if (line > 0) text += std::to_string(line) + ":";
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
  if (!root.isObject()) Fail(root, {}, "not an object");
  return !failed;
}

void JsonDocument::Fail(const Json::Value& value, const std::string& member,
                        const std::string& what, const std::string& detail) {
  if (failed) return;
  FailAt(static_cast<std::size_t>(value.getOffsetStart()), member, what);
  fault.detail = detail;
}

void JsonDocument::FailAt(std::size_t offset, const std::string& member, const std::string& what) {
  failed = true;
  fault.line = LineAt(source, offset);
  fault.member = member;
  fault.what = what;
}

bool ReadText(JsonDocument& document, const Json::Value& value, const std::string& member,
              ByteString* out) {
  if (value.isString()) {
    const std::string text = value.asString();
    if (!platform::IsUtf8(text)) {
      document.Fail(value, member,
                    "not valid UTF-8; other bytes are written {\"bytes\":\"<hex>\"}");
      return false;
    }
    *out = FromBytes(text);
    return true;
  }
  std::string bytes;
  if (value.isObject() && value.size() == 1 && value.isMember("bytes") &&
      value["bytes"].isString() && platform::ParseHexBytes(value["bytes"].asString(), &bytes)) {
    *out = FromBytes(bytes);
    return true;
  }
  document.Fail(value, member, "not a text");
  return false;
}

bool ReadWholeNumber(JsonDocument& document, const Json::Value& value, const std::string& member,
                     std::uint64_t most, std::uint64_t* out) {
  if (!value.isNumeric()) {
    document.Fail(value, member, "not a number");
    return false;
  }
  if (!value.isUInt64() || value.asUInt64() > most) {
    document.Fail(value, member, "not a whole number from 0 to " + std::to_string(most));
    return false;
  }
  *out = value.asUInt64();
  return true;
}

JsonObject::JsonObject(JsonDocument& document, const Json::Value& value, std::string member)
    : document(document), value(value), path(std::move(member)) {
  if (!value.isObject()) document.Fail(value, path, "not an object");
}

const Json::Value* JsonObject::Find(const char* name) {
  known.insert(name);
  if (!value.isObject() || !value.isMember(name)) return nullptr;
  return &value[name];
}

std::string JsonObject::MemberName(const std::string& name) const {
  return (path.empty() ? "" : path + ".") + Shortened(name);
}

bool JsonObject::ReadNumber(const char* name, std::uint64_t most, std::uint64_t* out) {
  const Json::Value* member = Find(name);
  return member && ReadWholeNumber(document, *member, MemberName(name), most, out);
}

bool JsonObject::ReadSigned(const char* name, std::int32_t* out) {
  const Json::Value* member = Find(name);
  if (!member) return false;
  if (!member->isNumeric()) {
    document.Fail(*member, MemberName(name), "not a number");
    return false;
  }
  if (!member->isInt()) {
    document.Fail(*member, MemberName(name), "not a whole number of 32 bits");
    return false;
  }
  *out = member->asInt();
  return true;
}

bool JsonObject::ReadFlag(const char* name, bool* out) {
  const Json::Value* member = Find(name);
  if (!member) return false;
  if (!member->isBool()) {
    document.Fail(*member, MemberName(name), "neither true nor false");
    return false;
  }
  *out = member->asBool();
  return true;
}

void JsonObject::Text(const char* name, ByteString* out) {
  const Json::Value* member = Find(name);
  if (member) ReadText(document, *member, MemberName(name), out);
}

bool JsonObject::ReadMask(const char* name, std::uint64_t* out) {
  const Json::Value* member = Find(name);
  if (!member) return false;
  if (!member->isString()) return ReadNumber(name, UINT64_MAX, out);
  const std::string text = member->asString();
  const bool hex = text.size() > 2 && text.size() <= 18 && text[0] == '0' && text[1] == 'x' &&
                   text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
  if (!hex) {
    document.Fail(*member, MemberName(name), "not a mask such as \"0x5\"");
    return false;
  }
  *out = std::strtoull(text.c_str(), nullptr, 16);
  return true;
}

void JsonObject::RefuseOthers() {
  if (!value.isObject()) return;
  for (const std::string& name : value.getMemberNames()) {
    if (!known.contains(name)) {
      document.Fail(value[name], MemberName(name), "unknown member");
    }
  }
}

}  // namespace kelvaro::console
