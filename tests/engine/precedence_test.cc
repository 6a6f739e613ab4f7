#include "engine/precedence.h"

#include <gtest/gtest.h>

namespace kelvaro {
namespace {

Control Wanting(std::uint64_t buttons, std::initializer_list<TriggerItem> items = {}) {
  Control control;
  control.SetButtonMask(buttons);
  for (const TriggerItem& item : items) control.triggerItems.AddTail(item);
  return control;
}

constexpr TriggerItem kLeft{0, 0, AxisNeg};
constexpr TriggerItem kRight{0, 0, AxisPos};
constexpr TriggerItem kUp{input_kind::kPov, 0, PovUp};
constexpr TriggerItem kUpOfTheSecondHat{input_kind::kPov, 1, PovUp};

TEST(Precedence, AControlContainsOneWithAShareOfItsInputsToEitherSide) {
  EXPECT_TRUE(IsContained(Wanting(1), Wanting(3)));
  EXPECT_TRUE(IsContained(Wanting(3), Wanting(3)));
  EXPECT_FALSE(IsContained(Wanting(3), Wanting(1)));
  EXPECT_TRUE(IsContained(Wanting(1, {kLeft}), Wanting(3, {kRight, kUp})));
  EXPECT_FALSE(IsContained(Wanting(1, {kLeft, kUp}), Wanting(3, {kRight})));
  EXPECT_FALSE(IsContained(Wanting(0, {kUp}), Wanting(1, {kUpOfTheSecondHat})));
}

TEST(Precedence, TheMouseHasItsAxesAndHatsToEitherSide) {
  MouseSettings mouse;
  mouse.leftMask = 1;
  EXPECT_FALSE(UsesMouseInput(mouse, Wanting(1, {kLeft, kUp})));
  for (const auto input :
       {&MouseSettings::mouseX, &MouseSettings::mouseY, &MouseSettings::mouseWheel}) {
    MouseSettings moved;
    moved.*input = MouseInput(0);
    EXPECT_TRUE(IsMouseInput(moved, kLeft));
    EXPECT_TRUE(IsMouseInput(moved, kRight));
    EXPECT_FALSE(IsMouseInput(moved, kUp));
    EXPECT_TRUE(UsesMouseInput(moved, Wanting(0, {kUp, kRight})));
    EXPECT_FALSE(UsesMouseInput(moved, Wanting(1)));
  }
  // Up and down it is another input than left and right.
  mouse.mouseWheel = MouseInput(input_kind::kPovVertical);
  EXPECT_FALSE(IsMouseInput(mouse, kUp));
  mouse.mouseWheel = MouseInput(input_kind::kPov, 1);
  EXPECT_TRUE(IsMouseInput(mouse, kUpOfTheSecondHat));
  EXPECT_FALSE(IsMouseInput(mouse, kUp));
}

}  // namespace
}  // namespace kelvaro
