#include "tests/foundation/allocations.h"

#include <gtest/gtest.h>

#include <new>

#include "foundation/linked_list.h"

namespace kelvaro {
namespace {

// What makes a count of 0 worth something. Plain calls, since a compiler may leave out a new
// expression that is deleted at once.
TEST(Allocations, CountEachForm) {
  const std::uint64_t before = Allocations();
  ::operator delete(::operator new(4));
  EXPECT_EQ(Allocations() - before, 1u);
  ::operator delete(::operator new(4, std::nothrow));
  EXPECT_EQ(Allocations() - before, 2u);
  ::operator delete[](::operator new[](4));
  EXPECT_EQ(Allocations() - before, 3u);
  ::operator delete[](::operator new[](4, std::nothrow));
  EXPECT_EQ(Allocations() - before, 4u);
}

TEST(Allocations, LiveUntilTheyAreGivenBack) {
  const std::int64_t before = LivingAllocations();
  void* const element = ::operator new(4);
  void* const array = ::operator new[](4);
  EXPECT_EQ(LivingAllocations() - before, 2);
  ::operator delete(element);
  EXPECT_EQ(LivingAllocations() - before, 1);
  ::operator delete[](array);
  ::operator delete(nullptr);
  EXPECT_EQ(LivingAllocations(), before);
}

}  // namespace
}  // namespace kelvaro
