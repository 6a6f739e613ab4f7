// The packed numbers of a field, most significant byte first. A member has the width of its type;
// one of type bool or std::uint8_t is a flag, which is written as 0 or 1 and read as 1 for anything
// but 0; of a mouse input its kind and index are stored.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "engine/mouse_settings.h"
#include "foundation/byte_string.h"
#include "foundation/relaxed.h"

namespace kelvaro {

// A member that keeps its value where the field ends before it.
template <typename T>
struct IfThere {
  explicit IfThere(T& member) : member(member) {}
  T& member;
};

// How many bytes of a field a member takes.
template <typename T>
constexpr std::uint32_t kPackedSize = sizeof(T);
template <>
inline constexpr std::uint32_t kPackedSize<TriggerItem> = 4;
template <typename T>
constexpr std::uint32_t kPackedSize<Relaxed<T>> = kPackedSize<T>;
template <typename T>
constexpr std::uint32_t kPackedSize<IfThere<T>> = kPackedSize<T>;

template <typename... T>
constexpr std::uint32_t PackedSize(const T&...) {
  return (kPackedSize<T> + ...);
}

// Takes a field apart from the front. A field cut short gives the bytes that are there as a smaller
// number, and 0 when there are none.
class PackedReader {
 public:
  // The field is borrowed.
  explicit PackedReader(const ByteString& field) : field(field) {}

  template <typename... T>
  void Read(T&&... members) {
    (One(members), ...);
  }

 private:
  template <std::integral T>
  T Number() {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(T) && position < field.Length(); ++i) {
      value = value << 8 | static_cast<std::uint8_t>(field[position++]);
    }
    return static_cast<T>(value);
  }

  template <std::integral T>
  void One(T& member) {
    member = Number<T>();
  }
  void One(std::uint8_t& flag) { flag = Number<std::uint8_t>() != 0; }
  void One(bool& flag) { flag = Number<std::uint8_t>() != 0; }
  template <std::size_t n>
  void One(std::uint8_t (&bytes)[n]) {
    for (std::uint8_t& byte : bytes) byte = Number<std::uint8_t>();
  }
  void One(TriggerItem& input) {
    Read(input.kind, input.index);
    input = MouseInput(input.kind, input.index);
  }
  template <typename T>
  void One(Relaxed<T>& member) {
    T plain{};
    One(plain);
    member = plain;
  }
  template <typename T>
  void One(IfThere<T>& last) {
    if (position < field.Length()) One(last.member);
  }

  const ByteString& field;
  std::uint32_t position = 0;
};

class PackedWriter {
 public:
  template <typename... T>
  explicit PackedWriter(const T&... members)
      : field(static_cast<std::int32_t>(PackedSize(members...))) {
    (One(members), ...);
  }

  const ByteString& Field() const { return field; }

 private:
  template <std::integral T>
  void One(T member) {
    const auto bits = static_cast<std::uint64_t>(member);
    for (std::size_t byte = sizeof(T); byte > 0; --byte) {
      field.AppendChar(static_cast<char>(bits >> (byte - 1) * 8));
    }
  }
  void One(std::uint8_t flag) { field.AppendChar(flag != 0); }
  void One(bool flag) { field.AppendChar(flag); }
  template <std::size_t n>
  void One(const std::uint8_t (&bytes)[n]) {
    field.Append(bytes, n);
  }
  void One(TriggerItem input) {
    One(input.kind);
    One(input.index);
  }
  template <typename T>
  void One(const Relaxed<T>& member) {
    One(static_cast<T>(member));
  }
  template <typename T>
  void One(IfThere<T> last) {
    One(last.member);
  }

  ByteString field;
};

}  // namespace kelvaro
