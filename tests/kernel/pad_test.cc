// The virtual pads and the reader against one another: what the other tests rest on.
#include "tests/kernel/pad.h"

#include <gtest/gtest.h>
#include <linux/input.h>

#include "tests/kernel/profile_run.h"
#include "tests/kernel/reader.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

TEST(VirtualPad, SendsItsButtonsAxesAndHats) {
  UinputPad pad(OrdinaryPad("Test Pad"));
  Reader reader(pad.Node());
  pad.Press(0);
  pad.Move(ABS_X, 20000);
  pad.TurnHat(0, 13500);
  pad.TurnHat(0, 31500);
  pad.TurnHat(0, -1);
  pad.Release(0);
  EXPECT_TRUE(
      Sent(reader, {"BTN_SOUTH down", "ABS_X 20000", "ABS_HAT0X 1", "ABS_HAT0Y 1", "ABS_HAT0X -1",
                    "ABS_HAT0Y -1", "ABS_HAT0X 0", "ABS_HAT0Y 0", "BTN_SOUTH up"}));
}

TEST(VirtualPad, HasAsManyButtonsAsItIsAskedFor) {
  for (const std::size_t count : {24U, 40U, 128U}) {
    PadShape shape;
    shape.buttons = ManyButtons(count);
    ASSERT_EQ(shape.buttons.size(), count);
    UinputPad pad(shape);
    Reader reader(pad.Node());
    for (std::size_t button = 0; button < count; ++button) {
      pad.Press(button);
      WaitMs(1);
    }
    EXPECT_TRUE(reader.WaitFor(count, 1000)) << count << " buttons";
  }
}

TEST(VirtualPad, OfAReportDescriptorIsAnOrdinaryGamePad) {
  UhidPad pad("Descriptor Pad", "serial-7");
  Reader reader(pad.Node());
  pad.Report(0x201, {255, 128, 128, 0}, 2);  // buttons 1 and 10, X right, Rz up, hat east
  pad.Report(0);
  EXPECT_TRUE(
      Sent(reader, {"BTN_SOUTH down", "BTN_TR2 down", "ABS_X 255", "ABS_RZ 0", "ABS_HAT0X 1",
                    "BTN_SOUTH up", "BTN_TR2 up", "ABS_X 128", "ABS_RZ 128", "ABS_HAT0X 0"}));
}

}  // namespace
}  // namespace kelvaro::kernel
