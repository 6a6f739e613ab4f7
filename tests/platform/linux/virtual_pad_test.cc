#include "app/platform/linux/virtual_pad.h"

#include <gtest/gtest.h>

namespace platform {
namespace {

VirtualPadShape Shape(std::uint32_t buttons, unsigned long axes, std::uint32_t hats) {
  return {"Shape", buttons, axes, hats};
}

TEST(VirtualPadTest, ThePadHasTheShapeThatWasAskedFor) {
  const struct {
    std::uint32_t buttons;
    unsigned long axes;
    std::uint32_t hats;
  } kShapes[] = {{11, 0x3F, 1},  {1, 0x01, 0},   {0, 0x03, 0}, {24, 0xFF, 4},
                 {128, 0x40, 2}, {127, 0x24, 1}, {2, 0x00, 0}};
  for (const auto& [buttons, axes, hats] : kShapes) {
    SCOPED_TRACE(testing::Message() << buttons << ' ' << axes << ' ' << hats);
    const DeviceFacts facts = FactsOf(Shape(buttons, axes, hats));
    const DeviceLayout layout = LayOut(facts);
    EXPECT_TRUE(IsGameDevice(facts));
    EXPECT_EQ(layout.buttons, buttons);
    EXPECT_EQ(layout.hats, hats);
    for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot)
      EXPECT_EQ(layout.axisCode[slot] >= 0, (axes >> slot & 1) != 0) << slot;
  }
}

TEST(VirtualPadTest, ASecondSliderBringsTheFirstAlong) {
  const DeviceLayout layout = LayOut(FactsOf(Shape(2, 0x80, 0)));
  EXPECT_EQ(layout.axes, 2u);
  EXPECT_EQ(layout.axisCode[kFirstSliderSlot], ABS_THROTTLE);
  EXPECT_EQ(layout.axisCode[kFirstSliderSlot + 1], ABS_GAS);
}

}  // namespace
}  // namespace platform
