#include "app/platform/hooks.h"

#include <gtest/gtest.h>

#include <vector>

namespace platform {
namespace {

std::vector<int> called;
std::intptr_t First(std::int32_t code, std::uintptr_t wParam, std::intptr_t lParam) {
  EXPECT_EQ(code, HCBT_MINMAX);
  EXPECT_EQ(wParam, 42u);
  EXPECT_EQ(lParam, SW_MINIMIZE);
  called.push_back(1);
  return 11;
}
std::intptr_t Second(std::int32_t, std::uintptr_t, std::intptr_t) {
  called.push_back(2);
  return 22;
}

TEST(Hooks, TheNewestIsToldAndHandsOnToTheOneBeforeIt) {
  called.clear();
  Hooks hooks;
  const HookHandle first = hooks.Add(&First);
  const HookHandle second = hooks.Add(&Second);
  hooks.TellMinimising(42);
  EXPECT_EQ(called, (std::vector<int>{2}));
  EXPECT_EQ(hooks.CallNext(second, HCBT_MINMAX, 42, SW_MINIMIZE), 11);
  EXPECT_EQ(called, (std::vector<int>{2, 1}));
  EXPECT_EQ(hooks.CallNext(first, HCBT_MINMAX, 42, SW_MINIMIZE), 0);
}

TEST(Hooks, OneThatWasRemovedIsToldNothing) {
  called.clear();
  Hooks hooks;
  const HookHandle first = hooks.Add(&First);
  const HookHandle second = hooks.Add(&Second);
  EXPECT_TRUE(hooks.Remove(second));
  EXPECT_FALSE(hooks.Remove(second));
  hooks.TellMinimising(42);
  EXPECT_EQ(called, (std::vector<int>{1}));
  EXPECT_TRUE(hooks.Remove(first));
}

TEST(Hooks, AProcedureThatIsNoneIsRefused) {
  Hooks hooks;
  EXPECT_EQ(hooks.Add(nullptr), 0u);
  EXPECT_FALSE(hooks.Remove(1));
  hooks.TellMinimising(42);  // nobody to tell
}

}  // namespace
}  // namespace platform
