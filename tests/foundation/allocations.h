// The allocator of the test program: it counts, and refuses what asks not to be thrown at as long
// as a test wants it to.
#pragma once

#include <cstdint>

namespace kelvaro {

// Allocations of any kind since the program began.
std::uint64_t Allocations();

// For its life, every allocation by new (std::nothrow) fails but the first `good`.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::int32_t good = 0);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace kelvaro
