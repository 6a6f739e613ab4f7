#include "tests/foundation/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace kelvaro {
namespace {

constexpr std::int32_t kAllGood = -1;

std::atomic<std::uint64_t> allocations{0};
std::atomic<std::int32_t> goodOnes{kAllGood};

void* Allocate(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size > 0 ? size : 1);
}

void* AllocateOrThrow(std::size_t size) {
  void* const memory = Allocate(size);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void* AllocateOrNull(std::size_t size) {
  const std::int32_t left = goodOnes.load(std::memory_order_relaxed);
  if (left == 0) return nullptr;
  if (left > 0) goodOnes.store(left - 1, std::memory_order_relaxed);
  return Allocate(size);
}

}  // namespace

std::uint64_t Allocations() { return allocations.load(std::memory_order_relaxed); }

FailingAllocations::FailingAllocations(std::int32_t good) { goodOnes = good; }

FailingAllocations::~FailingAllocations() { goodOnes = kAllGood; }

}  // namespace kelvaro

void* operator new(std::size_t size) { return kelvaro::AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return kelvaro::AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return kelvaro::AllocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return kelvaro::AllocateOrNull(size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
