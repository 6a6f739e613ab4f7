#include "tests/swarm/live_objects.h"

#if KELVARO_SANITIZED

std::optional<std::int64_t> kelvaro::LiveObjects() { return std::nullopt; }

#else

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::int64_t> live{0};
}  // namespace

std::optional<std::int64_t> kelvaro::LiveObjects() { return live; }

// All other forms, but for those of an alignment of their own, come here. They are replaced and not
// wrapped, as tests/foundation/allocations.cc has them: the standard library's own code makes some
// of what the program gives back, and only a replaced operator sees both.

void* operator new(std::size_t size) {
  void* const made = std::malloc(size != 0 ? size : 1);
  if (!made) throw std::bad_alloc();
  ++live;
  return made;
}

void operator delete(void* object) noexcept {
  if (!object) return;
  --live;
  std::free(object);
}

void operator delete(void* object, std::size_t) noexcept { operator delete(object); }

#endif
