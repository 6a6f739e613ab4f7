// A single value that one thread sets and others look at without a lock, of up to eight bytes and
// always whole: a reader never sees a half of one value beside a half of another. A stale read
// costs its reader one round; no order between two such values is promised.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kelvaro {

template <typename T>
class Relaxed {
 public:
  Relaxed(T initial = T{}) : word(Packed(initial)) {}  // NOLINT: stands in for a plain T
  Relaxed(const Relaxed& other) : Relaxed(static_cast<T>(other)) {}
  Relaxed& operator=(const Relaxed& other) { return *this = static_cast<T>(other); }
  Relaxed& operator=(T next) {
    word.store(Packed(next), std::memory_order_relaxed);
    return *this;
  }
  operator T() const {  // NOLINT
    const std::uint64_t bytes = word.load(std::memory_order_relaxed);
    T value{};
    std::memcpy(static_cast<void*>(&value), &bytes, sizeof value);  // NOLINT: of a pointer, too
    return value;
  }

 private:
  static std::uint64_t Packed(T value) {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(std::uint64_t));  // NOLINT
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, &value, sizeof value);  // NOLINT
    return bytes;
  }

  std::atomic<std::uint64_t> word;
};

}  // namespace kelvaro
