// Reads JSON whose faults are to be told to a person: by line, by member, in words.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <set>
#include <string>

#include "foundation/byte_string.h"

namespace kelvaro::console {

// What is wrong with a text, and where.
struct JsonFault {
  std::size_t line = 0;  // from 1; 0 when it is no matter of a line
  std::string member;    // "controls[2].buttonMask"; empty for the whole
  std::string what;
  std::string detail;  // further lines to show below, each ended by a line feed

  // "walk.json:12: controls[2].buttonMask: not a number".
  std::string Text(const std::string& file) const;
};

// A parsed text with the first fault found in it. Depth is bounded; the size is the caller's to
// bound, as a byte of text can cost fifty of memory.
class JsonDocument {
 public:
  // False, with fault set, when the text isn't one JSON object.
  bool Parse(const std::string& text);

  const Json::Value& Root() const { return root; }
  bool Failed() const { return failed; }
  const JsonFault& Fault() const { return fault; }

  // Notes a fault at `value`; the first one stands.
  void Fail(const Json::Value& value, const std::string& member, const std::string& what,
            const std::string& detail = {});

 private:
  void FailAt(std::size_t offset, const std::string& member, const std::string& what);

  std::string source;
  Json::Value root;
  bool failed = false;
  JsonFault fault;
};

// One object of a document, taken apart member by member. A member that isn't there leaves its
// target alone; one of a wrong type or range is a fault of the document.
class JsonObject {
 public:
  // `member` names the object itself, empty for the root.
  JsonObject(JsonDocument& document, const Json::Value& value, std::string member);

  // The member, or null.
  const Json::Value* Find(const char* name);
  // With the path to it; a long name is cut.
  std::string MemberName(const std::string& name) const;

  template <typename T>
  void Number(const char* name, T* out, std::uint64_t most) {
    std::uint64_t number = 0;
    if (ReadNumber(name, most, &number)) *out = static_cast<T>(number);
  }
  // Any whole number of 32 bits.
  template <typename T>
  void Signed(const char* name, T* out) {
    std::int32_t number = 0;
    if (ReadSigned(name, &number)) *out = number;
  }
  template <typename T>
  void Flag(const char* name, T* out) {
    bool flag = false;
    if (ReadFlag(name, &flag)) *out = flag;
  }
  // A string, or {"bytes":"<hex>"}.
  void Text(const char* name, ByteString* out);
  // A number, or a string such as "0x8000000000000001".
  template <typename T>
  void Mask(const char* name, T* out) {
    std::uint64_t mask = 0;
    if (ReadMask(name, &mask)) *out = mask;
  }

  // Every member that nothing asked for is a fault.
  void RefuseOthers();

  JsonDocument& Document() { return document; }

 private:
  bool ReadNumber(const char* name, std::uint64_t most, std::uint64_t* out);
  bool ReadSigned(const char* name, std::int32_t* out);
  bool ReadFlag(const char* name, bool* out);
  bool ReadMask(const char* name, std::uint64_t* out);

  JsonDocument& document;
  const Json::Value& value;
  const std::string path;
  std::set<std::string> known;
};

// The bytes of a JSON text value; false, with the fault noted, for anything else.
bool ReadText(JsonDocument& document, const Json::Value& value, const std::string& member,
              ByteString* out);
// A whole number from 0 to `most`; false, with the fault noted, for anything else.
bool ReadWholeNumber(JsonDocument& document, const Json::Value& value, const std::string& member,
                     std::uint64_t most, std::uint64_t* out);

}  // namespace kelvaro::console
