#include "tests/engine/failing_allocation.h"

#include <gtest/gtest.h>

#include <new>

#include "engine/device_snapshot.h"
#include "foundation/linked_list.h"

namespace {

struct Fault {
  bool StrikesNow() {
    if (at == 0) return false;
    ++seen;
    if (seen != at && !(onwards && seen > at)) return false;
    ++failed;
    return true;
  }

  std::uint32_t at = 0;  // 0: none
  bool onwards = false;
  std::uint32_t seen = 0;
  std::uint32_t failed = 0;
};

thread_local Fault ofElements;
thread_local Fault ofArrays;

}  // namespace

// The linker leads the forms that ask for a null result here (CMakeLists.txt). What succeeds comes
// from the plain ones, so that it goes with the plain deletes.
extern "C" {

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept {
  if (ofElements.StrikesNow()) return nullptr;
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept {
  if (ofArrays.StrikesNow()) return nullptr;
  try {
    return ::operator new[](size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // extern "C"

namespace kelvaro {

FailingAllocation::FailingAllocation(std::uint32_t nth, bool onwards) {
  ofElements = {nth, onwards};
}
FailingAllocation::~FailingAllocation() { ofElements.at = 0; }
std::uint32_t FailingAllocation::Failed() const { return ofElements.failed; }

FailingArray::FailingArray(std::uint32_t nth) { ofArrays = {nth}; }
FailingArray::~FailingArray() { ofArrays.at = 0; }
std::uint32_t FailingArray::Failed() const { return ofArrays.failed; }

namespace {

TEST(FailingAllocation, OnlyTheChosenAllocationFails) {
  LinkedList<TriggerItem> list;
  const TriggerItem item{0, 0, 1};
  {
    FailingAllocation fault(3);  // an element takes two: a node and a copy
    EXPECT_TRUE(list.AddTail(item));
    EXPECT_FALSE(list.AddTail(item));
    EXPECT_TRUE(list.AddTail(item));
    EXPECT_EQ(fault.Failed(), 1u);
  }
  EXPECT_TRUE(list.AddTail(item));
  EXPECT_EQ(list.count, 3);
}

TEST(FailingAllocation, AllFollowingOnesFailWhenAskedTo) {
  LinkedList<TriggerItem> list;
  const TriggerItem item{0, 0, 1};
  FailingAllocation fault(3, true);
  EXPECT_TRUE(list.AddTail(item));
  EXPECT_FALSE(list.AddTail(item));
  EXPECT_FALSE(list.AddTail(item));
  EXPECT_EQ(fault.Failed(), 2u);
  EXPECT_EQ(list.count, 1);
}

}  // namespace
}  // namespace kelvaro
