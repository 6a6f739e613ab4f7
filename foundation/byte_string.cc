#include "foundation/byte_string.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <utility>

#include "app/platform/files.h"

namespace kelvaro {
namespace {

constexpr std::uint8_t kBufferNotOwned = 1;
constexpr std::uint32_t kTableSize = 256;
constexpr std::int64_t kLargestAllocation = std::numeric_limits<std::int32_t>::max();
constexpr char kBackslash = '\\';

// What a string refers to once its content was moved out of it. Never written, as its capacity
// is 0.
char nothing = 0;

// Null when there is no memory, or more wanted than a signed size can tell.
char* Allocate(std::int64_t size) {
  if (size <= 0 || size > kLargestAllocation) return nullptr;
  return new (std::nothrow) char[static_cast<std::size_t>(size)];
}

// At most the largest size, for which there is no memory, as the terminator is to have its place.
std::uint32_t LengthOf(const char* text) {
  return static_cast<std::uint32_t>(std::min<std::size_t>(std::strlen(text), kLargestAllocation));
}

std::int64_t AtLeastMinimum(std::int64_t size) {
  return std::max<std::int64_t>(size, MinimumStringCapacity);
}

void CopyBytes(char* to, const char* from, std::uint32_t n) {
  if (n > 0) std::memmove(to, from, n);
}

bool LiesWithin(const char* pointer, const char* first, const char* last) {
  return !std::less<const char*>()(pointer, first) && !std::less<const char*>()(last, pointer);
}

void FillSkipTable(const char* pattern, std::uint32_t n, std::uint32_t* table) {
  std::fill(table, table + kTableSize, n);
  for (std::uint32_t i = 0; i + 1 < n; ++i) {
    table[static_cast<std::uint8_t>(pattern[i])] = n - 1 - i;
  }
}

// Index of the first match at or behind `start`, -1 for none. The window is compared from its
// end, and the byte that spoils it tells how far it may move.
std::int32_t Search(const char* text, std::uint32_t length, const char* pattern, std::uint32_t n,
                    std::uint32_t start, const std::uint32_t* table) {
  std::uint64_t last = std::uint64_t{start} + n - 1;
  while (last < length) {
    std::uint32_t matches = 0;
    while (matches < n && text[last - matches] == pattern[n - 1 - matches]) ++matches;
    if (matches == n) return static_cast<std::int32_t>(last + 1 - n);
    const std::uint32_t entry = table[static_cast<std::uint8_t>(text[last - matches])];
    last += entry > matches ? entry - matches : entry;
  }
  return -1;
}

template <typename Number>
void ReadBigEndian(const char* data, std::uint32_t length, Number* out) {
  const std::uint32_t width = std::min<std::uint32_t>(length, sizeof(Number));
  Number value = 0;
  for (std::uint32_t i = 0; i < width; ++i) {
    value = static_cast<Number>((value << 8) | static_cast<std::uint8_t>(data[i]));
  }
  *out = value;
}

std::uint8_t Same(std::uint8_t c) { return c; }

int CompareBytes(const char* left, std::uint32_t length, const void* bytes, std::int32_t n,
                 std::uint8_t (*fold)(std::uint8_t)) {
  if (!bytes) return 1;
  const char* right = static_cast<const char*>(bytes);
  const std::int32_t own = static_cast<std::int32_t>(length);
  const std::int32_t shorter = std::min(own, n);
  for (std::int32_t i = 0; i < shorter; ++i) {
    const std::uint8_t a = fold(static_cast<std::uint8_t>(left[i]));
    const std::uint8_t b = fold(static_cast<std::uint8_t>(right[i]));
    if (a != b) return a < b ? -1 : 1;
  }
  if (n < own) return 1;
  return n == own ? 0 : -1;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool InRange(char c, std::uint8_t low, std::uint8_t high) {
  const std::uint8_t value = static_cast<std::uint8_t>(c);
  return value >= low && value <= high;
}

}  // namespace

ByteString::ByteString() { MakeEmpty(MinimumStringCapacity); }

ByteString::ByteString(std::int32_t wanted) { MakeEmpty(AtLeastMinimum(std::int64_t{wanted} + 1)); }

ByteString::ByteString(char c) : ByteString() { AssignChar(c); }

ByteString::ByteString(std::uint16_t value) : ByteString() { AssignU16(value); }

ByteString::ByteString(const char* text) {
  const std::uint32_t n = text ? LengthOf(text) : 0;
  MakeEmpty(AtLeastMinimum(std::int64_t{n} + 1));
  if (data) SetText(text, n);
}

ByteString::ByteString(const ByteString& other) {
  MakeEmpty(other.capacity > 0 ? other.capacity : MinimumStringCapacity);
  if (data) SetText(other.data, other.length);
}

ByteString::ByteString(ByteString&& other) noexcept
    : buffer(&nothing), data(&nothing), flags(kBufferNotOwned) {
  Swap(other);
}

ByteString& ByteString::operator=(const ByteString& other) {
  Assign(other);
  return *this;
}

ByteString& ByteString::operator=(ByteString&& other) noexcept {
  if (this != &other) {
    Swap(other);
    other.Empty();
  }
  return *this;
}

ByteString& ByteString::operator=(const char* text) {
  Assign(text);
  return *this;
}

ByteString::~ByteString() { FreeBuffer(); }

void ByteString::MakeEmpty(std::int64_t size) {
  buffer = Allocate(size);
  data = buffer;
  capacity = buffer ? static_cast<std::int32_t>(size) : 0;
  if (data) data[0] = 0;
}

void ByteString::FreeBuffer() {
  if (!(flags & kBufferNotOwned)) delete[] buffer;
}

void ByteString::TakeBuffer(char* allocation, std::int32_t size) {
  FreeBuffer();
  buffer = allocation;
  data = allocation;
  capacity = size;
  flags &= static_cast<std::uint8_t>(~kBufferNotOwned);
}

void ByteString::Swap(ByteString& other) noexcept {
  std::swap(buffer, other.buffer);
  std::swap(data, other.data);
  std::swap(capacity, other.capacity);
  std::swap(length, other.length);
  std::swap(flags, other.flags);
  std::swap(skipTable, other.skipTable);
}

void ByteString::Changed() { skipTable.reset(); }

void ByteString::Rewind() {
  capacity += static_cast<std::int32_t>(data - buffer);
  data = buffer;
}

void ByteString::MoveDown() {
  const char* text = data;
  Rewind();
  if (text != data) CopyBytes(data, text, length);
}

void ByteString::SetText(const char* text, std::uint32_t n) {
  CopyBytes(data, text, n);
  length = n;
  data[n] = 0;
}

bool ByteString::Rewrite(const char* bytes, std::uint32_t n, std::int64_t allocation) {
  Changed();
  Rewind();
  if (std::int64_t{n} + 1 > capacity) {
    char* const fresh = Allocate(allocation);
    if (!fresh) {
      // The old allocation stays for the terminator's sake alone.
      if (capacity > 0) data[0] = 0;
      length = 0;
      capacity = 0;
      return false;
    }
    CopyBytes(fresh, bytes, n);
    TakeBuffer(fresh, static_cast<std::int32_t>(allocation));
    length = n;
    data[n] = 0;
    return true;
  }
  SetText(bytes, n);
  return true;
}

void ByteString::Assign(const char* text) {
  if (!text) {
    Empty();
    return;
  }
  const std::uint32_t n = LengthOf(text);
  Rewrite(text, n, AtLeastMinimum(std::int64_t{n} + 1));
}

void ByteString::Assign(const ByteString& other) {
  if (this == &other) return;
  Rewrite(other.data, other.length, std::int64_t{other.length} + 1);
}

bool ByteString::AssignBytes(const void* bytes, std::uint32_t n) {
  if (!bytes) return false;
  return Rewrite(static_cast<const char*>(bytes), n, std::int64_t{n} + 1);
}

void ByteString::AssignChar(char c) { Rewrite(&c, 1, MinimumStringCapacity); }

bool ByteString::AppendBytes(const char* bytes, std::uint32_t n, std::int64_t needed) {
  const std::int32_t offset = static_cast<std::int32_t>(data - buffer);
  if (needed < std::int64_t{capacity} + offset) {
    if (LiesWithin(bytes, data, data + length)) bytes -= offset;
    MoveDown();
    CopyBytes(data + length, bytes, n);
  } else {
    const std::int64_t total = std::int64_t{length} + n;
    const std::int64_t size = total + std::max<std::int64_t>(total / 10, MinimumStringCapacity);
    char* const fresh = Allocate(size);
    if (!fresh) return false;
    CopyBytes(fresh, data, length);
    CopyBytes(fresh + length, bytes, n);
    TakeBuffer(fresh, static_cast<std::int32_t>(size));
  }
  length += n;
  data[length] = 0;
  Changed();
  return true;
}

void ByteString::Append(const char* text) {
  if (text) Append(text, LengthOf(text));
}

void ByteString::Append(const ByteString& other) { Append(other.data, other.length); }

void ByteString::Append(const void* bytes, std::uint32_t n) {
  if (bytes) AppendBytes(static_cast<const char*>(bytes), n, std::int64_t{length} + n);
}

// Asks for two bytes more than a text of the same length would, so that the growth comes earlier.
void ByteString::AppendChar(char c) { AppendBytes(&c, 1, std::int64_t{length} + 2); }

ByteString ByteString::Concat(const char* text) const { return Concat(ByteString(text)); }

ByteString ByteString::Concat(const ByteString& other) const {
  const std::int64_t total = std::int64_t{length} + other.length;
  ByteString both(static_cast<std::int32_t>(std::min(total, kLargestAllocation - 1)));
  both.Append(*this);
  both.Append(other);
  return both;
}

ByteString ByteString::Left(std::int32_t n) const {
  return TextOf({data, static_cast<std::size_t>(Clamp(n))});
}

ByteString ByteString::Right(std::int32_t n) const {
  const std::size_t kept = static_cast<std::size_t>(Clamp(n));
  return TextOf({data + (length - kept), kept});
}

std::int32_t ByteString::Clamp(std::int32_t n) const {
  return std::clamp(n, std::int32_t{0}, static_cast<std::int32_t>(length));
}

void ByteString::Truncate(std::int32_t n) {
  if (length == 0 || n >= static_cast<std::int32_t>(length)) return;
  Changed();
  length = static_cast<std::uint32_t>(Clamp(n));
  data[length] = 0;
}

void ByteString::KeepRight(std::int32_t n) {
  if (n < 1) {
    Empty();
    return;
  }
  const std::int32_t dropped = static_cast<std::int32_t>(length) - n;
  if (dropped <= 0) return;
  Changed();
  data += dropped;
  capacity -= dropped;
  length = static_cast<std::uint32_t>(n);
}

void ByteString::Empty() {
  Rewind();
  length = 0;
  if (capacity > 0) data[0] = 0;
}

bool ByteString::Reserve(std::int32_t wanted, bool keepText, bool exact) {
  if (wanted < 5) wanted = 4;
  const std::int32_t room = capacity + static_cast<std::int32_t>(data - buffer);
  if (exact ? room != wanted : room < wanted) {
    char* const fresh = Allocate(wanted);
    if (!fresh) return false;
    const std::uint32_t most = static_cast<std::uint32_t>(wanted - 1);
    const std::uint32_t kept = keepText ? std::min(length, most) : 0;
    CopyBytes(fresh, data, kept);
    TakeBuffer(fresh, wanted);
    length = kept;
  } else if (keepText) {
    MoveDown();
  } else {
    Rewind();
  }
  data[length] = 0;
  Changed();
  return true;
}

void ByteString::ReplaceAll(const ByteString& from, const ByteString& to) {
  if (from.length == 0 || length == 0) return;
  std::uint32_t table[kTableSize];
  FillSkipTable(from.data, from.length, table);
  if (from.length == to.length) {
    Changed();
    if (from.length == 1) {
      std::replace(data, data + length, from.data[0], to.data[0]);
      return;
    }
    std::uint32_t start = 0;
    for (;;) {
      const std::int32_t at = Search(data, length, from.data, from.length, start, table);
      if (at < 0) return;
      CopyBytes(data + at, to.data, to.length);
      start = static_cast<std::uint32_t>(at) + to.length;
    }
  }

  // Replaces the string only when all of it could be built: half a result is useless.
  ByteString result(static_cast<std::int32_t>(length));
  const auto add = [&result](const char* bytes, std::uint32_t n) {
    return result.AppendBytes(bytes, n, std::int64_t{result.length} + n);
  };
  if (from.length == 1) {
    for (std::uint32_t i = 0; i < length; ++i) {
      const bool hit = data[i] == from.data[0];
      if (!(hit ? add(to.data, to.length) : add(data + i, 1))) return;
    }
  } else {
    std::uint32_t done = 0;
    for (;;) {
      const std::int32_t at = Search(data, length, from.data, from.length, done, table);
      if (at < 0) break;
      const std::uint32_t before = static_cast<std::uint32_t>(at) - done;
      if (!add(data + done, before) || !add(to.data, to.length)) return;
      done += before + from.length;
    }
    if (!add(data + done, length - done)) return;
  }
  *this = std::move(result);
}

void ByteString::RemoveAll(const char* pattern, std::int32_t n) {
  if (!pattern) return;
  if (n < 1) {
    n = static_cast<std::int32_t>(LengthOf(pattern));
  }
  if (LiesWithin(pattern, data, data + length)) {
    // Closing up would change the pattern under the walk.
    ByteString copy(n);
    if (!copy.AssignBytes(pattern, static_cast<std::uint32_t>(n))) return;
    RemoveAll(copy.data, n);
    return;
  }
  const std::uint32_t width = static_cast<std::uint32_t>(n);
  std::uint32_t table[kTableSize];
  FillSkipTable(pattern, width, table);
  std::uint32_t start = 0;
  for (;;) {
    const std::int32_t at = Search(data, length, pattern, width, start, table);
    if (at < 0) return;
    Changed();
    start = static_cast<std::uint32_t>(at);
    std::copy(data + start + width, data + length, data + start);
    length -= width;
    data[length] = 0;
  }
}

void ByteString::Replace(const char* from, const char* to) {
  if (from && to) ReplaceAll(ByteString(from), ByteString(to));
}

bool ByteString::Equals(const char* text) const {
  if (!text) return false;
  for (std::uint32_t i = 0; i < length; ++i) {
    if (text[i] != data[i] || text[i] == 0) return false;
  }
  return text[length] == 0;
}

bool ByteString::Equals(const ByteString& other) const {
  return length == other.length && (length == 0 || std::memcmp(data, other.data, length) == 0);
}

int ByteString::Compare(const void* bytes, std::int32_t n) const {
  return CompareBytes(data, length, bytes, n, Same);
}

int ByteString::CompareNoCase(const void* bytes, std::int32_t n) const {
  return CompareBytes(data, length, bytes, n, FoldUpper);
}

int ByteString::Compare(const ByteString& other, bool ignoreCase) const {
  const char* bytes = other.data ? other.data : &nothing;
  const std::int32_t n = static_cast<std::int32_t>(other.length);
  return ignoreCase ? CompareNoCase(bytes, n) : Compare(bytes, n);
}

bool ByteString::FindChar(char c, std::int32_t* position, std::int32_t start) const {
  const std::int32_t end = static_cast<std::int32_t>(length);
  if (start < 0) return false;
  for (std::int32_t i = start; i < end; ++i) {
    if (data[i] == c) {
      *position = i;
      return true;
    }
  }
  return false;
}

bool ByteString::CanHold(std::int32_t start, std::int32_t n) const {
  const std::int32_t own = static_cast<std::int32_t>(length);
  return n > 0 && start >= 0 && start < own && own - start >= n;
}

std::int32_t ByteString::Find(const void* pattern, std::int32_t start, std::int32_t n) const {
  if (!pattern || !CanHold(start, n)) return -1;
  const char* const bytes = static_cast<const char*>(pattern);
  const std::uint32_t width = static_cast<std::uint32_t>(n);
  std::uint32_t table[kTableSize];
  FillSkipTable(bytes, width, table);
  return Search(data, length, bytes, width, static_cast<std::uint32_t>(start), table);
}

std::int32_t ByteString::Find(const ByteString& pattern, std::int32_t start) const {
  const std::int32_t n = static_cast<std::int32_t>(pattern.length);
  if (!pattern.skipTable) return Find(pattern.data, start, n);
  if (!CanHold(start, n)) return -1;
  return Search(data, length, pattern.data, pattern.length, static_cast<std::uint32_t>(start),
                pattern.skipTable.get());
}

void ByteString::BuildSkipTable() {
  if (!skipTable) skipTable.reset(new (std::nothrow) std::uint32_t[kTableSize]);
  if (skipTable) FillSkipTable(data, length, skipTable.get());
}

bool ByteString::ToUpper(std::int32_t first, std::int32_t last) {
  const std::int32_t own = static_cast<std::int32_t>(length);
  if (own == 0 || first < 0 || first > own) return false;
  if (last < 0) last = own;
  Changed();
  for (std::int32_t i = first; i <= last && i < own; ++i) {
    data[i] = static_cast<char>(FoldUpper(static_cast<std::uint8_t>(data[i])));
  }
  return true;
}

void ByteString::AssignU16(std::uint16_t value) {
  const char bytes[] = {static_cast<char>(value >> 8), static_cast<char>(value)};
  AssignBytes(bytes, sizeof bytes);
}

void ByteString::AssignU32(std::uint32_t value) {
  const char bytes[] = {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
                        static_cast<char>(value >> 8), static_cast<char>(value)};
  AssignBytes(bytes, sizeof bytes);
}

void ByteString::ReadU16(std::uint16_t* out) const { ReadBigEndian(data, length, out); }

void ByteString::ReadU32(std::uint32_t* out) const { ReadBigEndian(data, length, out); }

void ByteString::ReadU64(std::uint64_t* out) const { ReadBigEndian(data, length, out); }

void ByteString::TrimLeft(std::uint8_t low, std::uint8_t high) {
  std::uint32_t n = 0;
  while (n < length && InRange(data[n], low, high)) ++n;
  KeepRight(static_cast<std::int32_t>(length - n));
}

void ByteString::TrimRight(std::uint8_t low, std::uint8_t high) {
  std::uint32_t n = length;
  while (n > 0 && InRange(data[n - 1], low, high)) --n;
  Truncate(static_cast<std::int32_t>(n));
}

void ByteString::Trim(std::uint8_t low, std::uint8_t high) {
  TrimLeft(low, high);
  TrimRight(low, high);
}

void ByteString::EnsureTrailingBackslash() {
  if (length == 0 || data[length - 1] != kBackslash) AppendChar(kBackslash);
}

void ByteString::TrimTrailingBackslashes() { TrimRight(kBackslash, kBackslash); }

std::int32_t ByteString::WriteTo(platform::File* file) const {
  std::uint32_t written = 0;
  if (!file || !file->WriteFile(data, length, &written)) return -1;
  return static_cast<std::int32_t>(written);
}

std::int32_t ByteString::ReadFrom(platform::File* file, std::int32_t n) {
  n = std::max(n, std::int32_t{0});
  if (!file || n == std::numeric_limits<std::int32_t>::max() || !Reserve(n + 1, false, false)) {
    return -1;
  }
  std::uint32_t read = 0;
  const bool good = file->ReadFile(data, static_cast<std::uint32_t>(n), &read);
  length = good ? read : 0;
  data[length] = 0;
  return good ? static_cast<std::int32_t>(read) : -1;
}

bool ByteString::ReadLine(platform::File* stream, bool keepEmptyLines) {
  Empty();
  if (!stream) return false;
  const auto next = [stream](char* c) {
    std::uint32_t read = 0;
    return stream->ReadFile(c, 1, &read) && read == 1;
  };
  char c = 0;
  while (next(&c)) {
    if (c != '\r' && c != '\n') {
      AppendChar(c);
      continue;
    }
    if (c == '\r' && !next(&c)) {
      // The carriage return goes back, and so the next call meets it again: without text it has
      // to be the end, or that end would never come.
      stream->SetFilePointer(-1, platform::FILE_CURRENT, nullptr);
      return length > 0;
    }
    if (length > 0 || keepEmptyLines) return true;
  }
  return length > 0;
}

std::string Bytes(const ByteString& text) {
  return text.IsEmpty() ? std::string() : std::string(text.Text(), text.Length());
}

ByteString TextOf(std::string_view bytes) {
  ByteString text(
      static_cast<std::int32_t>(std::min<std::size_t>(bytes.size(), kLargestAllocation - 1)));
  text.AssignBytes(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  return text;
}

ByteString Around(const char* before, const ByteString& text, const char* after) {
  ByteString whole(before);
  whole.Append(text);
  whole.Append(after);
  return whole;
}

ByteString InQuotes(const ByteString& text) { return Around("\"", text, "\""); }

std::uint8_t FoldUpper(std::uint8_t c) {
  return c >= 'a' && c <= 'z' ? static_cast<std::uint8_t>(c - ('a' - 'A')) : c;
}

ByteString ToDecimal(std::uint32_t value, bool thousands, std::int32_t minDigits) {
  char text[16];  // "4,294,967,295" is the longest
  char* first = text + sizeof text;
  int digits = 0;
  do {
    if (thousands && digits > 0 && digits % 3 == 0) *--first = ',';
    *--first = static_cast<char>('0' + value % 10);
    value /= 10;
    ++digits;
  } while (value > 0);
  const std::int32_t width = static_cast<std::int32_t>(text + sizeof text - first);

  ByteString result(std::max(width, minDigits));
  for (std::int32_t i = width; i < minDigits; ++i) result.AppendChar('0');
  result.Append(first, static_cast<std::uint32_t>(width));
  return result;
}

ByteString ToDecimalSigned(std::int32_t value, bool thousands, std::int32_t minDigits) {
  const std::uint32_t bits = static_cast<std::uint32_t>(value);
  if (value >= 0) return ToDecimal(bits, thousands, minDigits);
  return ByteString('-').Concat(ToDecimal(0u - bits, thousands, minDigits));
}

ByteString ToHex(std::uint32_t value) {
  char text[8];
  for (int i = 7; i >= 0; --i) {
    text[i] = "0123456789abcdef"[value & 15];
    value >>= 4;
  }
  return TextOf({text, sizeof text});
}

bool IsAllDigits(const ByteString& text) {
  for (std::uint32_t i = 0; i < text.Length(); ++i) {
    if (!IsDigit(text[i])) return false;
  }
  return !text.IsEmpty();
}

std::uint32_t ToUnsigned(const ByteString& text) {
  std::uint32_t value = 0;
  std::uint32_t weight = 1;
  for (std::uint32_t i = text.Length(); i-- > 0;) {
    if (!IsDigit(text[i])) continue;
    value += static_cast<std::uint32_t>(text[i] - '0') * weight;
    weight *= 10;
  }
  return value;
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

ByteString SystemErrorText(std::uint32_t code) {
  return TextOf(platform::system().FormatMessageA(code));
}

ByteString SystemErrorWords(std::uint32_t code) {
  ByteString text = SystemErrorText(code);
  text.TrimRight(0, ' ');
  return text;
}

ByteString SystemErrorWords() { return SystemErrorWords(platform::files().GetLastError()); }

}  // namespace kelvaro
