// Reads JSON whose faults are to be told to a person: by line and column, by member, in words.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "app/platform/recording/json.h"
#include "foundation/byte_string.h"

namespace kelvaro::console {

// What is wrong with a text, and where.
struct JsonFault {
  std::size_t line = 0;    // from 1; 0 when no line is to blame
  std::size_t column = 0;  // the byte in it, from 1; 0 when none is
  std::string member;      // "controls[2].buttonMask"; empty for the whole
  std::string what;
  std::string detail;  // further lines to show below, each ended by a line feed

  // "walk.json:12:23: controls[2].buttonMask: not a number".
  std::string Text(const std::string& file) const;
};

class JsonDocument;

// A value of a document, and its name in a message: "controls[2].buttonMask", "" for the whole.
struct JsonElement {
  JsonDocument& document;
  const platform::json::Value& value;
  std::string name;

  // Notes a fault here; the first one of a document stands.
  void Fail(const std::string& what, const std::string& detail = {}) const;
};

// A parsed text with the first fault found in it. Depth is bounded; the size is the caller's to
// bound, as a byte of text can cost fifty of memory.
class JsonDocument {
 public:
  // False, with fault set, when the text isn't one JSON object.
  bool Parse(const std::string& text);

  JsonElement Root() { return {*this, root, {}}; }
  bool Failed() const { return failed; }
  const JsonFault& Fault() const { return fault; }

 private:
  friend JsonElement;
  void FailAt(std::size_t offset, const std::string& member, const std::string& what);

  std::string source;
  platform::json::Value root;
  bool failed = false;
  JsonFault fault;
};

// Each reads a value of the kind that belongs to the type of its target. One of another type or
// range is a fault of the document and leaves the target alone.
void Read(const JsonElement& element, bool& flag);
void Read(const JsonElement& element, std::uint8_t& flag);
void Read(const JsonElement& element, std::uint16_t& number);
void Read(const JsonElement& element, std::uint32_t& number);
void Read(const JsonElement& element, std::int32_t& number);
// A number, or a string such as "0x8000000000000001".
void Read(const JsonElement& element, std::uint64_t& mask);
// A string, or {"bytes":"<hex>"}.
void Read(const JsonElement& element, ByteString& text);
// A whole number from 0 to 255.
void ReadByte(const JsonElement& element, std::uint8_t* byte);

// Calls read(element) for each element of a list, up to the first fault.
template <typename Read>
void ForEach(const JsonElement& list, Read read) {
  if (!list.value.IsList()) list.Fail("not a list");
  const auto& elements = list.value.Elements();
  for (std::size_t i = 0; i < elements.size() && !list.document.Failed(); ++i) {
    read(JsonElement{list.document, elements[i], list.name + "[" + std::to_string(i) + "]"});
  }
}

// An object of a document, taken apart member by member.
class JsonObject {
 public:
  explicit JsonObject(const JsonElement& element);

  std::optional<JsonElement> Find(const char* name);
  // One that isn't there leaves its target alone.
  template <typename T>
  void Member(const char* name, T& target) {
    if (const auto member = Find(name)) Read(*member, target);
  }
  // Every member that nothing asked for is a fault.
  void RefuseOthers();

 private:
  JsonElement MemberOf(const std::string& name, const platform::json::Value& member) const;

  const JsonElement element;
  std::set<std::string> known;
};

}  // namespace kelvaro::console
