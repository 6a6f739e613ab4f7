// The 8-bit string of the whole system, and the byte buffer of its file formats. Bytes are raw,
// zero bytes allowed; the byte behind the last is always 0, so that Text() serves as a C string.
// Dropping bytes from the front moves a pointer and copies nothing. Case folding touches ASCII
// letters only and knows no locale. Nothing throws: an allocation failure leaves a string empty
// (constructors, Assign) or unchanged (Append). No locking. Its many methods are a text's and a
// buffer's, and many of them overloads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {
class File;
}

namespace kelvaro {

// The smallest allocation, in bytes, and the least room added on growth.
constexpr std::int32_t MinimumStringCapacity = 16;

class ByteString {
 public:
  ByteString();
  explicit ByteString(std::int32_t capacity);  // empty, with room for `capacity` bytes
  explicit ByteString(char c);
  explicit ByteString(std::uint16_t value);  // two bytes, most significant first
  ByteString(const char* text);              // NOLINT: null gives an empty string
  ByteString(const ByteString& other);
  ByteString(ByteString&& other) noexcept;
  ByteString& operator=(const ByteString& other);
  ByteString& operator=(ByteString&& other) noexcept;
  ByteString& operator=(const char* text);
  virtual ~ByteString();

  // The bytes, zero-terminated. Null only after a constructor ran out of memory.
  const char* Text() const { return data; }
  std::uint32_t Length() const { return length; }
  bool IsEmpty() const { return length == 0; }
  std::int32_t Capacity() const { return capacity; }
  char operator[](std::uint32_t index) const { return data[index]; }

  // A null text empties the string.
  void Assign(const char* text);
  void Assign(const ByteString& other);
  // False, with nothing changed, for null. `bytes` may lie inside this string.
  bool AssignBytes(const void* bytes, std::uint32_t n);
  void AssignChar(char c);

  // Null is ignored. The appended bytes may be this string's own.
  void Append(const char* text);
  void Append(const ByteString& other);
  void Append(const void* bytes, std::uint32_t n);
  void AppendChar(char c);

  ByteString Concat(const char* text) const;
  ByteString Concat(const ByteString& other) const;

  // n below 0 counts as 0, above the length as the length.
  ByteString Left(std::int32_t n) const;
  ByteString Right(std::int32_t n) const;

  // Cuts to n bytes (n below 0 counts as 0); nothing when n isn't below the length.
  void Truncate(std::int32_t n);
  // Keeps the last n bytes, without copying. n below 1 empties, above the length keeps all.
  void KeepRight(std::int32_t n);
  void Empty();

  // Makes room of `wanted` bytes, the terminator among them (values below 5 count as 4): with
  // `exact` just that, otherwise at least that. Without keepText the content is undefined when the
  // room is there already, and empty when it had to be made. A kept text is cut to wanted - 1
  // bytes. False, with nothing changed, when memory ran out.
  bool Reserve(std::int32_t wanted, bool keepText, bool exact);

  // An empty `from` does nothing; without memory for a longer or shorter text nothing changes.
  // What was put in is not searched again.
  void ReplaceAll(const ByteString& from, const ByteString& to);
  // n below 1: the zero-terminated length. A null or empty pattern does nothing. What comes
  // together where a match was closed up is not looked at again.
  void RemoveAll(const char* pattern, std::int32_t n = 0);
  // Does nothing if either is null.
  void Replace(const char* from, const char* to);

  // Null gives false. The terminator counts: a longer text is not equal, and neither is one that
  // ends at a zero byte which this string has inside.
  bool Equals(const char* text) const;
  bool Equals(const ByteString& other) const;

  // -1, 0 or 1, by unsigned bytes over the shorter length. Note the sense of the tie: 1 when n is
  // below this length, -1 when it is above. Null gives 1.
  int Compare(const void* bytes, std::int32_t n) const;
  int CompareNoCase(const void* bytes, std::int32_t n) const;
  int Compare(const ByteString& other, bool ignoreCase) const;

  // The first c at or behind `start`. False, with *position untouched, when there is none or
  // `start` is outside the text.
  bool FindChar(char c, std::int32_t* position, std::int32_t start = 0) const;

  // Index of the first occurrence at or behind `start`; -1 when there is none, for a null or empty
  // pattern, a negative `start` and one at or behind the end.
  std::int32_t Find(const void* pattern, std::int32_t start, std::int32_t n) const;
  std::int32_t Find(const ByteString& pattern, std::int32_t start = 0) const;
  // Makes repeated searches for this string cheap, until it is changed. Copies don't have it.
  void BuildSkipTable();

  // Folds first..last, both included; a negative or too large `last` means the last byte. False,
  // with nothing changed, on an empty string or a `first` outside 0 to the length.
  bool ToUpper(std::int32_t first, std::int32_t last);

  // Numbers as bytes, most significant first.
  void AssignU16(std::uint16_t value);
  void AssignU32(std::uint32_t value);
  // From the first bytes; with fewer left than the width from those, and 0 from none.
  void ReadU16(std::uint16_t* out) const;
  void ReadU32(std::uint32_t* out) const;
  void ReadU64(std::uint64_t* out) const;

  // Remove bytes whose value lies in low..high, both included.
  void TrimLeft(std::uint8_t low, std::uint8_t high);
  void TrimRight(std::uint8_t low, std::uint8_t high);
  void Trim(std::uint8_t low, std::uint8_t high);

  void EnsureTrailingBackslash();
  void TrimTrailingBackslashes();

  // Bytes written or read, -1 on failure. ReadFrom replaces the text by up to n bytes (n below 0
  // counts as 0); a failed read leaves it empty, a lack of memory unchanged.
  std::int32_t WriteTo(platform::File* file) const;
  std::int32_t ReadFrom(platform::File* file, std::int32_t n);

  // The next line of `stream`, without its end; empty lines are passed over unless they are to be
  // kept. A lone carriage return ends a line, too, and costs the next one its first byte; one that
  // is the stream's last byte is left unread. False at the end of the stream with nothing read.
  bool ReadLine(platform::File* stream, bool keepEmptyLines);

 private:
  // A fresh allocation of `size` bytes for a constructor; none, with capacity 0, on failure.
  void MakeEmpty(std::int64_t size);
  void FreeBuffer();
  // Puts `allocation` in the place of the buffer.
  void TakeBuffer(char* allocation, std::int32_t size);
  void Swap(ByteString& other) noexcept;
  // The skip table fits one text only.
  void Changed();
  // Gives the room in front of the text back: without the text, and with it but its terminator.
  void Rewind();
  void MoveDown();
  // Needs n + 1 bytes of room.
  void SetText(const char* text, std::uint32_t n);
  // Where n bytes don't fit, the new allocation has `allocation` bytes.
  bool Rewrite(const char* bytes, std::uint32_t n, std::int64_t allocation);
  // In place when `needed` is below the room. False, with nothing changed, without memory.
  bool AppendBytes(const char* bytes, std::uint32_t n, std::int64_t needed);
  std::int32_t Clamp(std::int32_t n) const;
  bool CanHold(std::int32_t start, std::int32_t n) const;

  char* buffer = nullptr;     // start of the allocation
  char* data = nullptr;       // start of the text, at or behind buffer
  std::int32_t capacity = 0;  // bytes from data to the end of the allocation
  std::uint32_t length = 0;
  std::uint8_t flags = 0;  // bit 0: buffer isn't owned
  std::unique_ptr<std::uint32_t[]> skipTable;
};

// The same bytes, zeros included, in the seam's strings and back.
std::string Bytes(const ByteString& text);
ByteString TextOf(std::string_view bytes);

// A text between two others, and between double quotes.
ByteString Around(const char* before, const ByteString& text, const char* after);
ByteString InQuotes(const ByteString& text);

// The fixed case table: a to z fold to A to Z, all other values stay.
std::uint8_t FoldUpper(std::uint8_t c);

// Unsigned decimal. With `thousands` a comma every three digits; '0' in front up to minDigits
// characters, commas counted.
ByteString ToDecimal(std::uint32_t value, bool thousands, std::int32_t minDigits);
// minDigits applies to what stands behind the sign.
ByteString ToDecimalSigned(std::int32_t value, bool thousands, std::int32_t minDigits);
// Always 8 digits, lower case.
ByteString ToHex(std::uint32_t value);
bool IsAllDigits(const ByteString& text);  // false for an empty text
// Other bytes than digits are skipped ("1a2" is 12); wraps at 2^32.
std::uint32_t ToUnsigned(const ByteString& text);
bool IsLetter(char c);

// The system's message for an error code, line end included; empty when there is none.
ByteString SystemErrorText(std::uint32_t code);
// The same without the line end, to stand in a sentence. Without a code: of the last operation that
// failed in this thread.
ByteString SystemErrorWords(std::uint32_t code);
ByteString SystemErrorWords();

}  // namespace kelvaro
