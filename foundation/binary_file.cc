#include "foundation/binary_file.h"

#include <algorithm>
#include <new>

#include "foundation/paths.h"

namespace kelvaro {

bool BinaryFile::Open() {
  Close();
  window.reset(new (std::nothrow) std::uint8_t[windowSize]);
  if (!window) return false;
  lastError = 0;
  if (!IsEmpty()) {
    handle = platform::files().CreateFileA(Bytes(*this), platform::GENERIC_READ,
                                           platform::FILE_SHARE_READ | platform::FILE_SHARE_WRITE,
                                           platform::OPEN_EXISTING);
  }
  if (!handle) {
    FreeWindow();
    return false;
  }
  if (handle->ReadFile(window.get(), windowSize, &bytesInWindow) && bytesInWindow > 0) {
    windowFirst = 0;
    windowLast = bytesInWindow - 1;
  } else {
    lastError = platform::files().GetLastError();
  }
  return true;
}

bool BinaryFile::Close() {
  FreeWindow();
  if (!handle) return true;
  const bool closed = handle->CloseHandle();
  if (!closed) lastError = platform::files().GetLastError();
  handle.reset();
  return closed;
}

bool BinaryFile::ReadBytes(ByteString* out, std::uint64_t position, std::uint32_t count) {
  out->Empty();
  while (count > 0) {
    if (!Fetch(position)) return false;
    const std::uint64_t inside = windowLast - position + 1;
    const std::uint32_t n = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, inside));
    const std::uint32_t before = out->Length();
    out->Append(&window[position - windowFirst], n);
    if (out->Length() - before != n) return false;  // no memory
    position += n;
    count -= n;
  }
  return true;
}

bool BinaryFile::ReadU16(std::uint16_t* out, std::uint64_t position) {
  if (!ReadBytes(&scratch, position, 2)) return false;
  scratch.ReadU16(out);
  return true;
}

bool BinaryFile::ReadU32(std::uint32_t* out, std::uint64_t position) {
  if (!ReadBytes(&scratch, position, 4)) return false;
  scratch.ReadU32(out);
  return true;
}

bool BinaryFile::MoveWindow(std::uint64_t position) {
  if (!handle) return false;
  std::uint64_t start = position;
  if (position < windowFirst) {
    // A reader that goes backward gets the byte in the window's middle, so that walking to and fro
    // around it doesn't move the window at each step.
    const std::uint64_t half = windowSize / 2;
    start = position > half ? position - half : 0;
  }
  if (!handle->SetFilePointer(static_cast<std::int64_t>(start), platform::FILE_BEGIN, nullptr)) {
    lastError = platform::files().GetLastError();
    if (lastError != 0) return false;
  }
  if (!handle->ReadFile(window.get(), windowSize, &bytesInWindow) || bytesInWindow == 0) {
    lastError = platform::files().GetLastError();
    return false;
  }
  windowFirst = start;
  windowLast = start + bytesInWindow - 1;
  return InWindow(position);
}

void BinaryFile::FreeWindow() {
  window.reset();
  bytesInWindow = 0;
  windowFirst = kNoWindow;
  windowLast = 0;
}

}  // namespace kelvaro
