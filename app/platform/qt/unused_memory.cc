#include "app/platform/qt/unused_memory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QPixmapCache>
#include <cstdint>
#include <cstring>

namespace platform::qt {
namespace {

// A segment that can't be written is as the file has it. Libraries that a key's way goes through
// stay: a press shouldn't wait for a page.
int ReturnCode(dl_phdr_info* object, std::size_t, void*) {
  if (!std::strstr(object->dlpi_name, "/libQt")) return 0;
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  for (int i = 0; i < object->dlpi_phnum; ++i) {
    const ElfW(Phdr)& segment = object->dlpi_phdr[i];
    if (segment.p_type != PT_LOAD || segment.p_flags & PF_W) continue;
    const std::uintptr_t start = object->dlpi_addr + segment.p_vaddr;
    const std::uintptr_t first = start / page * page;
    madvise(reinterpret_cast<void*>(first), start + segment.p_memsz - first, MADV_DONTNEED);
  }
  return 0;
}

}  // namespace

void ReturnUnusedMemory() {
  QPixmapCache::clear();
  malloc_trim(0);
  dl_iterate_phdr(&ReturnCode, nullptr);
}

}  // namespace platform::qt
