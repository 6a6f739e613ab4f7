// A single value that one thread sets and others look at without a lock. A stale read costs its
// reader one round; no order between two such values is promised.
#pragma once

#include <atomic>

namespace kelvaro {

template <typename T>
class Relaxed {
 public:
  Relaxed(T initial = T{}) : value(initial) {}  // NOLINT: stands in for a plain T
  Relaxed(const Relaxed& other) : value(static_cast<T>(other)) {}
  Relaxed& operator=(const Relaxed& other) { return *this = static_cast<T>(other); }
  Relaxed& operator=(T next) {
    value.store(next, std::memory_order_relaxed);
    return *this;
  }
  operator T() const { return value.load(std::memory_order_relaxed); }  // NOLINT

 private:
  std::atomic<T> value;
};

}  // namespace kelvaro
