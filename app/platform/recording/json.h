// JSON as this system writes and reads it: values of a parsed text, each with its place, and texts
// as they are written. Reading is strict: no comments, no name twice, nothing behind the value.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform::json {

class Value {
 public:
  using List = std::vector<Value>;
  using Members = std::map<std::string, Value>;

  bool IsBool() const { return std::holds_alternative<bool>(content); }
  bool IsNumber() const { return std::holds_alternative<Number>(content); }
  bool IsText() const { return std::holds_alternative<std::string>(content); }
  bool IsList() const { return std::holds_alternative<List>(content); }
  bool IsObject() const { return std::holds_alternative<Members>(content); }

  // What a value of another kind is: false, 0, empty.
  bool Bool() const { return Content<bool>(); }
  double Real() const { return Content<Number>().real; }
  const std::string& Text() const { return Content<std::string>(); }
  const List& Elements() const { return Content<List>(); }
  const Members& ByName() const { return Content<Members>(); }  // sorted by their names

  // A number that is whole, however it is written ("2e2"), and in the range; none for any other
  // value.
  std::optional<std::int64_t> Signed() const { return Content<Number>().isSigned; }
  std::optional<std::uint64_t> Unsigned() const { return Content<Number>().isUnsigned; }

  // The member of that name; null for none, and in what is no object.
  const Value* Find(const std::string& name) const;
  // The member of that name, the element of that number; null's value for none.
  const Value& operator[](const std::string& name) const;
  const Value& operator[](std::size_t index) const;

  // Where it begins in the parsed text, in bytes.
  std::size_t Offset() const { return offset; }

 private:
  friend class Builder;
  struct Number {
    double real = 0;
    std::optional<std::int64_t> isSigned;
    std::optional<std::uint64_t> isUnsigned;
  };

  template <typename T>
  const T& Content() const {
    static const T none{};
    const T* const held = std::get_if<T>(&content);
    return held ? *held : none;
  }

  std::variant<std::monostate, bool, Number, std::string, List, Members> content;
  std::size_t offset = 0;
};

struct Fault {
  std::size_t offset = 0;  // where, in bytes
  std::string what;
};

// Parses a text that is one value, with lists and objects at most `deepest` levels deep; bytes of
// texts from 0x20 on are taken as they are. False, with *fault, for any other.
bool Parse(std::string_view text, int deepest, Value* value, Fault* fault);

// A text in quotes, bytes from 0x20 on as they are.
std::string Quoted(std::string_view text);

}  // namespace platform::json
