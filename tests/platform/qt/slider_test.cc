#include "app/platform/qt/slider.h"

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class SliderTest : public QtTest {};

WINDOW_TEST(SliderTest, APositionBeyondAnEndBecomesTheEnd) {
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

WINDOW_TEST(SliderTest, EachMoveOfThePersonIsToldWithItsPosition) {
  controls().SliderSetRange(Window(), kSlider, 0, 50);
  controls().SliderSetPos(Window(), kSlider, 25);
  QTest::keyClick(Widget(kSlider), Qt::Key_Right);
  QTest::keyClick(Widget(kSlider), Qt::Key_Left);
  QTest::keyClick(Widget(kSlider), Qt::Key_PageUp);
  EXPECT_EQ(recorder.TakeLines(),
            (std::vector<std::string>{"119 scrolled 26", "119 scrolled 25", "119 scrolled 35"}));
}

WINDOW_TEST(SliderTest, AnotherKindIsNoSlider) {
  EXPECT_FALSE(controls().SliderSetRange(Window(), kButton, 0, 1));
  EXPECT_FALSE(controls().SliderSetTicFreq(Window(), kButton, 1));
  EXPECT_FALSE(controls().SliderSetPos(Window(), kButton, 1));
  EXPECT_EQ(controls().SliderGetPos(Window(), kButton), -1);
}

}  // namespace
}  // namespace platform::qt
