// A file that is read at any position, through a window that follows the reader, so that bytes at
// scattered offsets cost no system call each. The string is the path. There is no current position:
// reads leave nothing behind but the window. Numbers are big-endian. Nothing tells why a read
// failed; the file stays open after it, and a read at a good position works. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/files.h"
#include "foundation/byte_string.h"

namespace kelvaro {

class BinaryFile : public ByteString {
 public:
  static constexpr std::uint32_t kWindowSize = 0x20000;
  static constexpr std::uint64_t kNoWindow = ~std::uint64_t{0};

  BinaryFile() = default;
  explicit BinaryFile(const ByteString& path) : ByteString(path) {}
  BinaryFile(const BinaryFile&) = delete;
  BinaryFile& operator=(const BinaryFile&) = delete;

  // Opens the path that the string holds, and reads the first window. A file that was open is
  // closed first. True for an empty file too, of which nothing can be read then. False, and closed,
  // without a path, where there is no such file, for a folder, and without memory.
  bool Open();

  // True when nothing was open; false, and closed all the same, when the system refused.
  bool Close();

  // Replaces *out with `count` bytes from `position`. False when the file ends before: *out holds
  // what it has up to there. A count of 0 is always true. Memory follows what the file has, not
  // what is asked for.
  bool ReadBytes(ByteString* out, std::uint64_t position, std::uint32_t count);

  // False, with *out untouched, when the file ends before.
  bool ReadU16(std::uint16_t* out, std::uint64_t position);
  bool ReadU32(std::uint32_t* out, std::uint64_t position);

  std::unique_ptr<std::uint8_t[]> window;  // null when closed
  std::uint32_t bytesInWindow = 0;         // what the last fill delivered
  std::uint32_t windowSize = kWindowSize;
  std::uint64_t windowFirst = kNoWindow;  // position of the window's first byte, kNoWindow for none
  std::uint64_t windowLast = 0;           // position of its last byte
  std::unique_ptr<platform::File> handle;  // null when closed
  std::uint32_t lastError = 0;             // the system's, of a read or a close that failed

 private:
  // No window holds kNoWindow, as windowLast is below it.
  bool InWindow(std::uint64_t position) const {
    return position >= windowFirst && position <= windowLast;
  }
  // Whether the window holds the byte at `position` now.
  bool Fetch(std::uint64_t position) { return InWindow(position) || MoveWindow(position); }
  bool MoveWindow(std::uint64_t position);
  void FreeWindow();

  ByteString scratch;  // of ReadU16 and ReadU32, kept for its allocation
};

}  // namespace kelvaro
