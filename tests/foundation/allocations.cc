#include "tests/foundation/allocations.h"

#include <cstddef>
#include <cstring>
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
thread_local std::int64_t living = 0;
thread_local Fault fault;

// An operator of a library that is part of the program comes here too when it calls another one:
// only the first of them counts.
class Call {
 public:
  Call() { ++depth; }
  ~Call() { --depth; }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 protected:
  static bool IsFirst() { return depth == 1; }

 private:
  static inline thread_local int depth = 0;
};

class Allocation : Call {
 public:
  Allocation() {
    if (!IsFirst()) return;
    ++allocations;
    ++living;
  }
};

class Release : Call {
 public:
  explicit Release(const void* memory) {
    if (memory && IsFirst()) --living;
  }
};

void* Filled(void* memory, std::size_t size) {
  return memory ? std::memset(memory, 0xA5, size) : nullptr;
}

}  // namespace

std::uint64_t Allocations() { return allocations; }
std::int64_t LivingAllocations() { return living; }

FailingAllocations::FailingAllocations(std::int32_t good, bool onwards)
    : FailingAllocations(true, static_cast<std::uint32_t>(good) + 1, onwards) {}
FailingAllocations::FailingAllocations(bool arrays, std::uint32_t nth, bool onwards) {
  fault = {arrays, nth, onwards};
}
FailingAllocations::~FailingAllocations() { fault = {}; }
std::uint32_t FailingAllocations::Failed() const { return fault.failed; }

}  // namespace kelvaro

// The linker leads every operator new of the program to the wrapped one here, and the original
// stays within reach. To define the operators instead wouldn't do under sanitizers, which bring
// definitions of their own.
// Their names end with the letter of a size's type, which on 64-bit Windows is a long long.
#ifdef _WIN64
#define OPERATOR(kind, name, tag) __##kind##__Zn##name##y##tag
#define SIZED_DELETE(kind, name) __##kind##__Zd##name##Pvy
#else
#define OPERATOR(kind, name, tag) __##kind##__Zn##name##m##tag
#define SIZED_DELETE(kind, name) __##kind##__Zd##name##Pvm
#endif
#define DELETE(kind, name) __##kind##__Zd##name##Pv

extern "C" {

void* OPERATOR(real, w, )(std::size_t size);
void* OPERATOR(real, a, )(std::size_t size);
void* OPERATOR(real, w, RKSt9nothrow_t)(std::size_t size, const std::nothrow_t& tag) noexcept;
void* OPERATOR(real, a, RKSt9nothrow_t)(std::size_t size, const std::nothrow_t& tag) noexcept;

void* OPERATOR(wrap, w, )(std::size_t size) {
  const kelvaro::Allocation counted;
  return OPERATOR(real, w, )(size);
}

void* OPERATOR(wrap, a, )(std::size_t size) {
  const kelvaro::Allocation counted;
  return OPERATOR(real, a, )(size);
}

void* OPERATOR(wrap, w, RKSt9nothrow_t)(std::size_t size, const std::nothrow_t& tag) noexcept {
  if (kelvaro::fault.StrikesNow()) return nullptr;
  const kelvaro::Allocation counted;
  return kelvaro::Filled(OPERATOR(real, w, RKSt9nothrow_t)(size, tag), size);
}

void* OPERATOR(wrap, a, RKSt9nothrow_t)(std::size_t size, const std::nothrow_t& tag) noexcept {
  if (kelvaro::fault.ofArrays && kelvaro::fault.StrikesNow()) return nullptr;
  const kelvaro::Allocation counted;
  return kelvaro::Filled(OPERATOR(real, a, RKSt9nothrow_t)(size, tag), size);
}

void DELETE(real, l)(void* memory) noexcept;
void DELETE(real, a)(void* memory) noexcept;
void SIZED_DELETE(real, l)(void* memory, std::size_t size) noexcept;
void SIZED_DELETE(real, a)(void* memory, std::size_t size) noexcept;

void DELETE(wrap, l)(void* memory) noexcept {
  const kelvaro::Release counted(memory);
  DELETE(real, l)(memory);
}

void DELETE(wrap, a)(void* memory) noexcept {
  const kelvaro::Release counted(memory);
  DELETE(real, a)(memory);
}

void SIZED_DELETE(wrap, l)(void* memory, std::size_t size) noexcept {
  const kelvaro::Release counted(memory);
  SIZED_DELETE(real, l)(memory, size);
}

void SIZED_DELETE(wrap, a)(void* memory, std::size_t size) noexcept {
  const kelvaro::Release counted(memory);
  SIZED_DELETE(real, a)(memory, size);
}

}  // extern "C"
