#include "desktop_fixture.h"

namespace platform {
namespace {

class SliderCase : public DesktopTest {};

IN_WINDOW(SliderCase, APositionBeyondAnEndBecomesTheEnd) {
  EXPECT_TRUE(controls().SliderSetRange(Window(), kSlider, 0, 50));
  EXPECT_TRUE(controls().SliderSetTicFreq(Window(), kSlider, 5));
  EXPECT_TRUE(controls().SliderSetPos(Window(), kSlider, 25));
  EXPECT_EQ(controls().SliderGetPos(Window(), kSlider), 25);
  controls().SliderSetPos(Window(), kSlider, 51);
  EXPECT_EQ(controls().SliderGetPos(Window(), kSlider), 50);
  controls().SliderSetPos(Window(), kSlider, -1);
  EXPECT_EQ(controls().SliderGetPos(Window(), kSlider), 0);
  EXPECT_TRUE(recorder.lines.empty());
}

}  // namespace
}  // namespace platform
