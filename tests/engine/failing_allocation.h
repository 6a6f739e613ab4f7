// Lets chosen allocations of lists and their elements, or of arrays, fail: those that ask for a
// null result.
#pragma once

#include <cstdint>

namespace kelvaro {

// From its making on, the `nth` such allocation of this thread fails, counted from 1, and with
// `onwards` all that follow too. Ends with the scope; one at a time.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::uint32_t nth, bool onwards = false);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // How many have failed so far.
  std::uint32_t Failed() const;
};

// The same for the `nth` array, in programs that lead that form too.
class FailingArray {
 public:
  explicit FailingArray(std::uint32_t nth);
  ~FailingArray();
  FailingArray(const FailingArray&) = delete;
  FailingArray& operator=(const FailingArray&) = delete;

  std::uint32_t Failed() const;
};

}  // namespace kelvaro
