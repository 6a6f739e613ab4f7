#include "storage/gathered_file.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "foundation/paths.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kSmallestRoom = 4096;
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
  if (n > 0) std::memcpy(content.get() + position, bytes, n);
  putDown = std::min(putDown, position);
  position = end;
  size = std::max(size, end);
  return true;
}

void GatheredFile::Seek(std::uint32_t target) { position = std::min(target, size); }

bool GatheredFile::PutDown() {
  if (putDown == size) return true;
  if (systemPosition != putDown) {
    if (!handle->SetFilePointer(putDown, platform::FILE_BEGIN, nullptr)) return false;
    systemPosition = putDown;
  }
  std::uint32_t written = 0;
  const bool whole = handle->WriteFile(content.get() + putDown, size - putDown, &written);
  putDown += written;
  systemPosition = putDown;
  return whole && putDown == size;
}

bool GatheredFile::Close() {
  if (!IsOpen()) return true;
  const bool isDown = PutDown();
  isClosed = true;
  return handle->CloseHandle() && isDown;
}

void GatheredFile::Release() {
  handle.reset();
  isClosed = false;
  content.reset();
  capacity = size = position = putDown = systemPosition = 0;
}

bool GatheredFile::Grow(std::uint32_t needed) {
  const std::uint32_t doubled = capacity > kLongestFile / 2 ? kLongestFile : capacity * 2;
  const std::uint32_t room = std::max({needed, doubled, kSmallestRoom});
  char* const moved = static_cast<char*>(std::realloc(content.get(), room));
  if (!moved) return false;
  static_cast<void>(content.release());
  content.reset(moved);
  capacity = room;
  return true;
}

}  // namespace kelvaro
