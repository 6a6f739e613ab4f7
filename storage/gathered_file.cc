#include "storage/gathered_file.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "foundation/paths.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kLongestFile = std::numeric_limits<std::uint32_t>::max();

}  // namespace

bool GatheredFile::Create(const ByteString& path) {
  Close();
  Release();
  handle =
      platform::files().CreateFileA(Bytes(path), platform::GENERIC_READ | platform::GENERIC_WRITE,
                                    platform::FILE_SHARE_READ, platform::CREATE_ALWAYS);
  return IsOpen();
}

bool GatheredFile::Write(const void* bytes, std::uint32_t n) {
  if (!IsOpen() || n > kLongestFile - position) return false;
  const std::uint32_t end = position + n;
  if (end > capacity && !Grow(end)) return false;
  std::copy_n(static_cast<const char*>(bytes), n, content.get() + position);
  putDown = std::min(putDown, position);
  position = end;
  size = std::max(size, end);
  return true;
}

void GatheredFile::Seek(std::uint32_t target) { position = std::min(target, size); }

bool GatheredFile::PutDown() {
  if (putDown == size) return true;
  if (systemPosition != putDown &&
      !handle->SetFilePointer(putDown, platform::FILE_BEGIN, nullptr)) {
    return false;
  }
  std::uint32_t written = 0;
  const bool isWritten = handle->WriteFile(content.get() + putDown, size - putDown, &written);
  putDown += written;
  systemPosition = putDown;
  return isWritten;
}

bool GatheredFile::Close() {
  if (!IsOpen()) return true;
  const bool isDown = PutDown();
  isClosed = true;
  return handle->CloseHandle() && isDown;
}

void GatheredFile::Release() { *this = GatheredFile(); }

bool GatheredFile::Grow(std::uint32_t needed) {
  // From 2 GiB on twice as much doesn't fit in 32 bits any more, and what is needed counts.
  const std::uint32_t room = std::max(needed, capacity * 2);
  std::unique_ptr<char[]> grown(new (std::nothrow) char[room]);
  if (!grown) return false;
  std::copy_n(content.get(), size, grown.get());
  content = std::move(grown);
  capacity = room;
  return true;
}

}  // namespace kelvaro
