#include "tests/foundation/allocations.h"

#include <atomic>
#include <cstddef>
#include <new>

namespace kelvaro {
namespace {

constexpr std::int32_t kAllGood = -1;

std::atomic<std::uint64_t> allocations{0};
std::atomic<std::int32_t> goodOnes{kAllGood};

void Count() { allocations.fetch_add(1, std::memory_order_relaxed); }

bool MayAllocate() {
  const std::int32_t left = goodOnes.load(std::memory_order_relaxed);
  if (left == 0) return false;
  if (left > 0) goodOnes.store(left - 1, std::memory_order_relaxed);
  Count();
  return true;
}

}  // namespace

std::uint64_t Allocations() { return allocations.load(std::memory_order_relaxed); }

FailingAllocations::FailingAllocations(std::int32_t good) { goodOnes = good; }

FailingAllocations::~FailingAllocations() { goodOnes = kAllGood; }

}  // namespace kelvaro

// The linker leads every operator new of this program to the wrapped one here (CMakeLists.txt), and
// the original stays within reach. To define the operators instead wouldn't do under sanitizers,
// which bring definitions of their own.
extern "C" {

void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap__Znwm(std::size_t size) {
  kelvaro::Count();
  return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size) {
  kelvaro::Count();
  return __real__Znam(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
  return kelvaro::MayAllocate() ? __real__ZnwmRKSt9nothrow_t(size, tag) : nullptr;
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
  return kelvaro::MayAllocate() ? __real__ZnamRKSt9nothrow_t(size, tag) : nullptr;
}

}  // extern "C"
