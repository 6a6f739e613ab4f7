// The packed numbers of a field, most significant byte first.
#pragma once

#include <cstdint>

#include "foundation/byte_string.h"

namespace kelvaro {

// Takes a field apart from the front. A field cut short gives the bytes that are there as a smaller
// number, and 0 when there are none.
class PackedReader {
 public:
  explicit PackedReader(const ByteString& field) : rest(field) {}

  bool AtEnd() const { return rest.IsEmpty(); }
  bool Flag() { return U8() != 0; }
  std::uint8_t U8();
  std::uint16_t U16();
  std::uint32_t U32();
  std::uint64_t U64();

 private:
  void Drop(std::uint32_t n);

  ByteString rest;
};

class PackedWriter {
 public:
  explicit PackedWriter(std::int32_t size = 0) : field(size) {}

  PackedWriter& Flag(bool value) { return U8(value ? 1 : 0); }
  PackedWriter& U8(std::uint8_t value);
  PackedWriter& U16(std::uint16_t value);
  PackedWriter& U32(std::uint32_t value);
  PackedWriter& U64(std::uint64_t value);
  const ByteString& Field() const { return field; }

 private:
  ByteString field;
};

}  // namespace kelvaro
