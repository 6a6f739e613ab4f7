#include "tests/foundation/allocations.h"

#include <cstddef>
#include <new>

namespace kelvaro {
namespace {

struct Fault {
  bool StrikesNow() {
    if (at == 0) return false;
    ++seen;
    if (seen != at && !(onwards && seen > at)) return false;
    ++failed;
    return true;
  }

  bool ofArrays = false;  // besides elements
  std::uint32_t at = 0;   // 0 for none
  bool onwards = false;
  std::uint32_t seen = 0;
  std::uint32_t failed = 0;
};

thread_local std::uint64_t allocations = 0;
thread_local Fault fault;

}  // namespace

std::uint64_t Allocations() { return allocations; }

FailingAllocations::FailingAllocations(std::int32_t good)
    : FailingAllocations(true, static_cast<std::uint32_t>(good) + 1, true) {}
FailingAllocations::FailingAllocations(bool arrays, std::uint32_t nth, bool onwards) {
  fault = {arrays, nth, onwards};
}
FailingAllocations::~FailingAllocations() { fault = {}; }
std::uint32_t FailingAllocations::Failed() const { return fault.failed; }

}  // namespace kelvaro

// The linker leads every operator new of the program to the wrapped one here, and the original
// stays within reach. To define the operators instead wouldn't do under sanitizers, which bring
// definitions of their own.
extern "C" {

void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap__Znwm(std::size_t size) {
  ++kelvaro::allocations;
  return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size) {
  ++kelvaro::allocations;
  return __real__Znam(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
  if (kelvaro::fault.StrikesNow()) return nullptr;
  ++kelvaro::allocations;
  return __real__ZnwmRKSt9nothrow_t(size, tag);
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
  if (kelvaro::fault.ofArrays && kelvaro::fault.StrikesNow()) return nullptr;
  ++kelvaro::allocations;
  return __real__ZnamRKSt9nothrow_t(size, tag);
}

}  // extern "C"
