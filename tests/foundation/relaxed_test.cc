#include "foundation/relaxed.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kelvaro {
namespace {

struct Pair {
  std::uint16_t first;
  std::uint16_t second;
};

TEST(Relaxed, KeepsEachByteOfValuesUpToEightBytes) {
  EXPECT_EQ(Relaxed<std::uint64_t>(0xF102030405060708), 0xF102030405060708u);
  EXPECT_EQ(Relaxed<std::int32_t>(-2), -2);
  EXPECT_EQ(Relaxed<bool>(true), true);
  const Pair pair = Relaxed<Pair>(Pair{1, 0xFFFE});
  EXPECT_EQ(pair.first, 1);
  EXPECT_EQ(pair.second, 0xFFFE);
}

TEST(Relaxed, IsTheValueThatWasSetLast) {
  Relaxed<std::uint32_t> value;
  EXPECT_EQ(value, 0u);
  value = 7;
  EXPECT_EQ(value, 7u);
  const Relaxed<std::uint32_t> copy(value);
  value = 8;
  EXPECT_EQ(copy, 7u);
  value = copy;
  EXPECT_EQ(value, 7u);
}

}  // namespace
}  // namespace kelvaro
