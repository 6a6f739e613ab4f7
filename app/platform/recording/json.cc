#include "app/platform/recording/json.h"

#include <algorithm>
#include <cmath>

// Its empty stack reckons with a null pointer before it makes room, to which the sanitizer objects.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#if defined(__clang__)
#pragma clang attribute pop
#endif

namespace platform::json {

constexpr double kTwoTo63 = 9223372036854775808.0;

const Value* Value::Find(const std::string& name) const {
  const auto found = ByName().find(name);
  return found == ByName().end() ? nullptr : &found->second;
}

const Value& Value::operator[](const std::string& name) const {
  static const Value null;
  const Value* const found = Find(name);
  return found ? *found : null;
}

const Value& Value::operator[](std::size_t index) const {
  static const Value null;
  return index < Elements().size() ? Elements()[index] : null;
}

// Makes values of what the library reads. It tells of each thing when it stands right behind it, so
// that the thing begins behind the one before.
class Builder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Builder> {
 public:
  using Size = rapidjson::SizeType;

  Builder(std::string_view text, int deepest, Value* root, Fault* fault)
      : text(text), deepest(static_cast<std::size_t>(deepest)), root(root), fault(fault) {}

  bool Run() {
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos)
      return Fail(zero, "a zero byte");               // which the library takes for the end
    if (text.starts_with(kMark)) end = kMark.size();  // as some editors save it
    while (stream.Tell() < end) stream.Take();
    rapidjson::Reader reader;
    // Not in its full precision, in which it counts the bits before the first one of a zero.
    const auto result = reader.Parse(stream, *this);
    if (!result.IsError()) return true;
    if (result.Code() == rapidjson::kParseErrorTermination) return false;
    std::string what = rapidjson::GetParseError_En(result.Code());
    what.pop_back();  // its full stop
    return Fail(std::min(result.Offset(), Next()), what);
  }

  // What the library calls; false ends it.
  bool Null() { return Add(), true; }
  bool Bool(bool truth) { return Add().content = truth, true; }
  bool Int(int number) { return Int64(number); }
  bool Uint(unsigned number) { return Uint64(number); }
  bool Int64(std::int64_t number) {
    Value::Number& added = AddNumber(static_cast<double>(number));
    added.isSigned = number;
    if (number >= 0) added.isUnsigned = number;
    return true;
  }
  bool Uint64(std::uint64_t number) {
    Value::Number& added = AddNumber(static_cast<double>(number));
    added.isUnsigned = number;
    if (number <= INT64_MAX) added.isSigned = number;
    return true;
  }
  bool Double(double number) {
    Value::Number& added = AddNumber(number);
    if (number != std::trunc(number)) return true;
    if (std::fabs(number) < kTwoTo63) added.isSigned = static_cast<std::int64_t>(number);
    if (number >= 0 && number < 2 * kTwoTo63) added.isUnsigned = static_cast<std::uint64_t>(number);
    return true;
  }
  bool String(const char* bytes, Size size, bool) {
    return Add().content = std::string(bytes, size), true;
  }
  bool StartArray() { return Open(Value::List()); }
  bool EndArray(Size) { return Close(); }
  bool StartObject() { return Open(Value::Members()); }
  bool EndObject(Size) { return Close(); }
  bool Key(const char* bytes, Size size, bool) {
    const std::size_t begin = Begin();
    const std::string name(bytes, size);
    const auto [added, isNew] = std::get<Value::Members>(open.back()->content).try_emplace(name);
    member = &added->second;
    return isNew || Fail(begin, "Duplicate key: '" + name + "'");
  }

 private:
  static constexpr std::string_view kMark = "\xEF\xBB\xBF";

  bool Fail(std::size_t offset, const std::string& what) {
    *fault = {offset, what};
    return false;
  }

  // Where the next thing begins.
  std::size_t Next() const { return text.find_first_not_of(" \t\r\n,:", end); }
  // Where that begins which has just been read.
  std::size_t Begin() {
    const std::size_t begin = Next();
    end = stream.Tell();
    return begin;
  }

  Value& Add() {
    Value* added = open.empty() ? root : member;
    if (!open.empty() && open.back()->IsList())
      added = &std::get<Value::List>(open.back()->content).emplace_back();
    added->offset = Begin();
    return *added;
  }
  Value::Number& AddNumber(double real) {
    return Add().content.emplace<Value::Number>(Value::Number{real, {}, {}});
  }

  template <typename Content>
  bool Open(Content empty) {
    Value& added = Add();
    added.content = std::move(empty);
    if (open.size() == deepest) return Fail(added.offset, "nested too deeply");
    open.push_back(&added);
    return true;
  }
  bool Close() {
    open.pop_back();
    end = stream.Tell();
    return true;
  }

  const std::string_view text;
  const std::size_t deepest;
  Value* const root;
  Fault* const fault;
  rapidjson::MemoryStream stream{text.data(), text.size()};
  std::size_t end = 0;       // of what was read last
  std::vector<Value*> open;  // lists and objects; none grows while one in it is open
  Value* member = nullptr;   // whose name was read last
};

bool Parse(std::string_view text, int deepest, Value* value, Fault* fault) {
  return Builder(text, deepest, value, fault).Run();
}

std::string Quoted(std::string_view text) {
  rapidjson::StringBuffer out;
  rapidjson::Writer<rapidjson::StringBuffer>(out).String(
      text.data(), static_cast<rapidjson::SizeType>(text.size()));
  return {out.GetString(), out.GetSize()};
}

}  // namespace platform::json
