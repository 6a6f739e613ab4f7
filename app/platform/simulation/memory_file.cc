#include "app/platform/simulation/memory_file.h"

#include <algorithm>
#include <cstring>

namespace platform::simulation {
namespace {

// No file grows beyond this: a position far out must fail like a full disk, not use up the memory.
constexpr std::size_t kLargestFile = std::size_t{1} << 30;

}  // namespace

bool MemoryFile::ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) {
  *read = 0;
  if (failing) return false;
  if (position >= content.size()) return true;
  const std::size_t taken = std::min<std::size_t>(wanted, content.size() - position);
  if (taken > 0) std::memcpy(buffer, content.data() + position, taken);
  position += taken;
  *read = static_cast<std::uint32_t>(taken);
  return true;
}

bool MemoryFile::WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) {
  *written = 0;
  if (failing) return false;
  if (size == 0) return true;
  if (position > kLargestFile || size > kLargestFile - position) return false;
  // A gap behind the old end reads as zeros.
  if (content.size() < position + size) content.resize(position + size);
  std::memcpy(content.data() + position, data, size);
  position += size;
  *written = size;
  return true;
}

bool MemoryFile::SetFilePointer(std::int64_t distance, std::uint32_t method,
                                std::int64_t* newPosition) {
  if (failing) return false;
  std::int64_t from = 0;
  switch (method) {
    case FILE_BEGIN:
      break;
    case FILE_CURRENT:
      from = static_cast<std::int64_t>(position);
      break;
    case FILE_END:
      from = static_cast<std::int64_t>(content.size());
      break;
    default:
      return false;
  }
  std::int64_t target = 0;
  if (__builtin_add_overflow(from, distance, &target) || target < 0) return false;
  position = static_cast<std::size_t>(target);
  if (newPosition) *newPosition = target;
  return true;
}

bool MemoryFile::CloseHandle() {
  if (failing) return false;
  failing = true;
  return true;
}

}  // namespace platform::simulation
