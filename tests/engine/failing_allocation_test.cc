#include "tests/engine/failing_allocation.h"

#include <gtest/gtest.h>

#include <new>

#include "engine/device_snapshot.h"
#include "foundation/linked_list.h"

namespace {

thread_local std::uint32_t seen = 0;
thread_local std::uint32_t failAt = 0;  // 0: none
thread_local bool failOnwards = false;
thread_local std::uint32_t failed = 0;

bool FailsNow() {
  if (failAt == 0) return false;
  ++seen;
  if (seen != failAt && !(failOnwards && seen > failAt)) return false;
  ++failed;
  return true;
}

}  // namespace

// The linker leads the one form that the lists use here (CMakeLists.txt). What succeeds comes from
// the plain one, so that it goes with the plain delete.
extern "C" void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t&) noexcept {
  if (FailsNow()) return nullptr;
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

namespace kelvaro {

FailingAllocation::FailingAllocation(std::uint32_t nth, bool onwards) {
  seen = 0;
  failed = 0;
  failOnwards = onwards;
  failAt = nth;
}

FailingAllocation::~FailingAllocation() { failAt = 0; }

std::uint32_t FailingAllocation::Failed() const { return failed; }

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
