#include "app/platform/qt/slider.h"

#include <QSlider>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class SliderTest : public QtTest {};

IN_WINDOW(SliderTest, ATickStandsAtEachStepThatIsAskedFor) {
  controls().SliderSetTicFreq(Window(), kSlider, 5);
  EXPECT_EQ(qobject_cast<QSlider*>(Widget(kSlider))->tickInterval(), 5);
}

IN_WINDOW(SliderTest, EachMoveOfThePersonIsToldWithItsPosition) {
  controls().SliderSetRange(Window(), kSlider, 0, 50);
  controls().SliderSetPos(Window(), kSlider, 25);
  QTest::keyClick(Widget(kSlider), Qt::Key_Right);
  QTest::keyClick(Widget(kSlider), Qt::Key_Left);
  QTest::keyClick(Widget(kSlider), Qt::Key_PageUp);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"119 scrolled 26", "119 scrolled 25", "119 scrolled 35"}));
}

}  // namespace
}  // namespace platform::qt
