// The write side of a file that is put on disk in one piece. What is written gathers in memory,
// where headers can still be patched; otherwise a profile would cost tens of thousands of small
// system calls. Below 4 GiB, as the sizes inside the files are 32 bits wide. From Create to Release
// nobody else can create the same file. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "app/platform/files.h"
#include "foundation/byte_string.h"

namespace kelvaro {

class GatheredFile {
 public:
  // Makes the file afresh; what it held is gone. False, with nothing open, on failure, also while
  // somebody else has created it and not yet released it.
  bool Create(const ByteString& path);
  bool IsOpen() const { return handle && !isClosed; }

  // Puts bytes at the position and moves it behind them. False, with nothing changed, when nothing
  // is open, without memory, or when the file would be too long.
  bool Write(const void* bytes, std::uint32_t n);
  std::uint32_t Position() const { return position; }
  // A position behind the end is the end.
  void Seek(std::uint32_t target);
  void SeekToEnd() { position = size; }

  // Hands to the system what it doesn't have yet. False when that didn't take all of it.
  bool PutDown();
  // Puts down the rest and closes. False when either failed; closed all the same. True when nothing
  // was open.
  bool Close();
  // Lets go of the file; an open one is closed without putting down the rest.
  void Release();

 private:
  bool Grow(std::uint32_t needed);

  std::unique_ptr<platform::File> handle;  // kept until Release
  bool isClosed = false;
  std::unique_ptr<char[]> content;
  std::uint32_t capacity = 0;
  std::uint32_t size = 0;
  std::uint32_t position = 0;
  std::uint32_t putDown = 0;         // the system has the bytes below this
  std::uint32_t systemPosition = 0;  // where its next write goes
};

}  // namespace kelvaro
