// The allocator of a test program that asks for it (kelvaro_own_allocator): it counts, and refuses
// what a test wants refused of those allocations that ask for a null result. What it gives for
// these isn't zero by luck. Each thread has its own counts and faults.
#pragma once

#include <cstdint>

namespace kelvaro {

// Allocations of any kind by this thread since its start.
std::uint64_t Allocations();

// Those of them that it hasn't given back. Libraries that aren't part of the program, such as the
// one that has std::string, may give back what they never took: good for our own memory alone.
std::int64_t LivingAllocations();

// For its life every allocation by new (std::nothrow) fails but the first `good`; without `onwards`
// the one behind these alone. One at a time.
class FailingAllocations {
 public:
  explicit FailingAllocations(std::int32_t good = 0, bool onwards = true);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // How many have failed so far.
  std::uint32_t Failed() const;

 protected:
  FailingAllocations(bool arrays, std::uint32_t nth, bool onwards);
};

// The `nth` element, such as a list's node, counted from 1; with `onwards` all that follow, too.
class FailingAllocation : public FailingAllocations {
 public:
  explicit FailingAllocation(std::uint32_t nth, bool onwards = false)
      : FailingAllocations(false, nth, onwards) {}
};

}  // namespace kelvaro
