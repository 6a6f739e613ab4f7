// Container files put together by hand, without the code under test.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/byte_string.h"

namespace kelvaro {

// "58 42 46" as the bytes it says; blanks divide where the reader likes.
inline std::string FromHex(const std::string& digits) {
  const auto value = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string bytes;
  int high = -1;
  for (const char c : digits) {
    if (c == ' ') continue;
    if (high < 0) {
      high = value(c);
    } else {
      bytes += static_cast<char>(high * 16 + value(c));
      high = -1;
    }
  }
  return bytes;
}

// In blocks of four bytes.
inline std::string ToHexText(const std::string& bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % 4 == 0) text += ' ';
    text += kDigits[static_cast<unsigned char>(bytes[i]) >> 4];
    text += kDigits[static_cast<unsigned char>(bytes[i]) & 15];
  }
  return text;
}

inline std::string Big(std::uint64_t value, int width) {
  std::string bytes;
  for (int shift = (width - 1) * 8; shift >= 0; shift -= 8)
    bytes += static_cast<char>(value >> shift);
  return bytes;
}

inline std::string Chunk(std::uint16_t type, const std::string& data) {
  return Big(type, 2) + Big(data.size(), 4) + data;
}
inline std::string Field(const std::string& data) { return Chunk(2, data); }
inline std::string NumberField(std::uint32_t value) { return Chunk(5, Big(value, 4)); }

// With a size and a count of one's own choice.
inline std::string ListHead(std::uint32_t size, std::uint32_t id, std::uint32_t count) {
  return Big(1, 2) + Big(size, 4) + Big(id, 4) + Big(count, 4);
}

using Chunks = std::vector<std::string>;

inline Chunks Join(Chunks first, const Chunks& more) {
  first.insert(first.end(), more.begin(), more.end());
  return first;
}

inline std::string List(std::uint32_t id, const Chunks& children) {
  std::string content;
  for (const std::string& child : children) content += child;
  return ListHead(static_cast<std::uint32_t>(content.size()), id,
                  static_cast<std::uint32_t>(children.size())) +
         content;
}

// A whole file around the children of the root.
inline std::string Container(const Chunks& children, const std::string& magic = "XFF") {
  return magic + Big(1, 2) + List(0, children);
}
inline std::string ProfileBytes(const Chunks& children) { return Container(children, "XBF"); }

}  // namespace kelvaro
