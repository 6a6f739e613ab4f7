#include "engine/mouse_settings.h"

#include <gtest/gtest.h>

namespace kelvaro {
namespace {

TEST(MouseSettings, DefaultsOfEachMember) {
  const MouseSettings settings;
  EXPECT_EQ(settings.acceleration, 0);
  EXPECT_EQ(settings.movementDamper, 5);
  EXPECT_EQ(settings.movementSensitivity, 15);
  EXPECT_EQ(settings.wheelDamper, 5);
  EXPECT_EQ(settings.wheelSensitivity, 15);
  EXPECT_EQ(settings.leftButton, 0);
  EXPECT_EQ(settings.middleButton, 0);
  EXPECT_EQ(settings.rightButton, 0);
  EXPECT_EQ(settings.leftMask, 0u);
  EXPECT_EQ(settings.middleMask, 0u);
  EXPECT_EQ(settings.rightMask, 0u);
  EXPECT_EQ(TriggerItem(settings.mouseX).kind, 11);
  EXPECT_EQ(TriggerItem(settings.mouseY).kind, 11);
  EXPECT_EQ(TriggerItem(settings.mouseWheel).kind, 11);
  EXPECT_FALSE(settings.mouseAlwaysActive);
}

TEST(MouseButtonMask, WrapsAt32AndFillsTheUpperHalfFromIndex31) {
  const struct {
    std::uint16_t index;
    std::uint64_t mask;
  } rows[] = {
      {0, 0x1},
      {1, 0x2},
      {15, 0x8000},
      {30, 0x40000000},
      {32, 0x1},
      {33, 0x2},
      {62, 0x40000000},
      {64, 0x1},
      {31, 0xFFFFFFFF80000000u},
      {63, 0xFFFFFFFF80000000u},
      {127, 0xFFFFFFFF80000000u},
      {65535, 0xFFFFFFFF80000000u},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(MouseButtonMask(row.index), row.mask) << "index " << row.index;
  }
}

TEST(MouseButtonMask, EveryIndexBut31Mod32GivesOneBitOfTheLowHalf) {
  for (std::uint32_t index = 0; index < 128; ++index) {
    const std::uint64_t mask = MouseButtonMask(static_cast<std::uint16_t>(index));
    EXPECT_EQ(CountButtons(mask), index % 32 == 31 ? 33u : 1u) << "index " << index;
  }
}

}  // namespace
}  // namespace kelvaro
