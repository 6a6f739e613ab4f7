#include "storage/packed_field.h"

#include <algorithm>

namespace kelvaro {

std::uint8_t PackedReader::U8() {
  const std::uint8_t value = rest.IsEmpty() ? 0 : static_cast<std::uint8_t>(rest[0]);
  Drop(sizeof value);
  return value;
}

std::uint16_t PackedReader::U16() {
  std::uint16_t value = 0;
  rest.ReadU16(&value);
  Drop(sizeof value);
  return value;
}

std::uint32_t PackedReader::U32() {
  std::uint32_t value = 0;
  rest.ReadU32(&value);
  Drop(sizeof value);
  return value;
}

std::uint64_t PackedReader::U64() {
  std::uint64_t value = 0;
  rest.ReadU64(&value);
  Drop(sizeof value);
  return value;
}

void PackedReader::Drop(std::uint32_t n) {
  rest.KeepRight(static_cast<std::int32_t>(rest.Length() - std::min(n, rest.Length())));
}

PackedWriter& PackedWriter::U8(std::uint8_t value) {
  field.AppendChar(static_cast<char>(value));
  return *this;
}

PackedWriter& PackedWriter::U16(std::uint16_t value) {
  return U8(static_cast<std::uint8_t>(value >> 8)).U8(static_cast<std::uint8_t>(value));
}

PackedWriter& PackedWriter::U32(std::uint32_t value) {
  return U16(static_cast<std::uint16_t>(value >> 16)).U16(static_cast<std::uint16_t>(value));
}

PackedWriter& PackedWriter::U64(std::uint64_t value) {
  return U32(static_cast<std::uint32_t>(value >> 32)).U32(static_cast<std::uint32_t>(value));
}

}  // namespace kelvaro
