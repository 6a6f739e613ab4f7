#include "console/json_reader.h"

#include <cstdlib>
#include <limits>

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

// Sets where `offset` lies. A lone carriage return ends a line, too.
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

// A whole number from 0 to the most that the target holds.
template <typename T>
void ReadWhole(const JsonElement& element, T* out) {
  constexpr std::uint64_t most = std::numeric_limits<T>::max();
  if (!element.value.IsNumber()) return element.Fail("not a number");
  const auto number = element.value.Unsigned();
  if (!number || *number > most) {
    return element.Fail("not a whole number from 0 to " + std::to_string(most));
  }
  *out = static_cast<T>(*number);
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
  platform::json::Fault wrong;
  if (!platform::json::Parse(source, kDeepestNesting, &root, &wrong)) {
    FailAt(wrong.offset, {}, Shortened(wrong.what));
    return false;
  }
  if (!root.IsObject()) Root().Fail("not an object");
  return !failed;
}

void JsonElement::Fail(const std::string& what, const std::string& detail) const {
  if (document.failed) return;
  document.FailAt(value.Offset(), name, what);
  document.fault.detail = detail;
}

void JsonDocument::FailAt(std::size_t offset, const std::string& member, const std::string& what) {
  failed = true;
  SetPlace(source, offset, &fault);
  fault.member = member;
  fault.what = what;
}

void Read(const JsonElement& element, bool& flag) {
  if (!element.value.IsBool()) return element.Fail("neither true nor false");
  flag = element.value.Bool();
}

void Read(const JsonElement& element, std::uint8_t& flag) {
  bool truth = flag != 0;
  Read(element, truth);
  flag = truth;
}

void Read(const JsonElement& element, std::uint16_t& number) { ReadWhole(element, &number); }

void Read(const JsonElement& element, std::uint32_t& number) { ReadWhole(element, &number); }

void Read(const JsonElement& element, std::int32_t& number) {
  if (!element.value.IsNumber()) return element.Fail("not a number");
  const auto whole = element.value.Signed();
  if (!whole || *whole < INT32_MIN || *whole > INT32_MAX) {
    return element.Fail("not a whole number of 32 bits");
  }
  number = static_cast<std::int32_t>(*whole);
}

void Read(const JsonElement& element, std::uint64_t& mask) {
  if (!element.value.IsText()) return ReadWhole(element, &mask);
  const std::string& text = element.value.Text();
  const bool hex = text.size() > 2 && text.size() <= 18 && text[0] == '0' && text[1] == 'x' &&
                   text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
  if (!hex) return element.Fail("not a mask such as \"0x5\"");
  mask = std::strtoull(text.c_str(), nullptr, 16);
}

void Read(const JsonElement& element, ByteString& text) {
  const platform::json::Value& value = element.value;
  std::string bytes;
  if (value.IsText()) {
    bytes = value.Text();
    if (!platform::IsUtf8(bytes)) {
      return element.Fail("not valid UTF-8; other bytes are written {\"bytes\":\"<hex>\"}");
    }
  } else {
    const platform::json::Value* const hex = value.Find("bytes");
    if (!hex || value.ByName().size() != 1 || !hex->IsText() ||
        !platform::ParseHexBytes(hex->Text(), &bytes)) {
      return element.Fail("not a text");
    }
  }
  text = TextOf(bytes);
}

void ReadByte(const JsonElement& element, std::uint8_t* byte) { ReadWhole(element, byte); }

JsonObject::JsonObject(const JsonElement& element) : element(element) {
  if (!element.value.IsObject()) element.Fail("not an object");
}

std::optional<JsonElement> JsonObject::Find(const char* name) {
  known.insert(name);
  const platform::json::Value* const member = element.value.Find(name);
  if (!member) return std::nullopt;
  return MemberOf(name, *member);
}

void JsonObject::RefuseOthers() {
  for (const auto& [name, member] : element.value.ByName()) {
    if (!known.contains(name)) MemberOf(name, member).Fail("unknown member");
  }
}

JsonElement JsonObject::MemberOf(const std::string& name,
                                 const platform::json::Value& member) const {
  const std::string path = element.name.empty() ? "" : element.name + ".";
  return {element.document, member, path + Shortened(name)};
}

}  // namespace kelvaro::console
