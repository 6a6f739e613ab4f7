#include "app/platform/qt/dialog_units.h"

#include <QFontMetricsF>
#include <cmath>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

TEST(DialogUnits, FourAcrossAreTheMeanWidthAndEightDownTheHeightOfTheFont) {
  const QFont font = QApplication::font();
  const QFontMetricsF metrics(font);
  const double mean = metrics.horizontalAdvance(
                          QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) /
                      52;
  const ControlTemplate control = {ControlKind::Label, 1, "", 4, 8, 40, 80};
  const QRect place = DialogUnits(font).PlaceOf(control);
  EXPECT_EQ(place.left(), std::lround(mean));
  EXPECT_EQ(place.top(), std::lround(metrics.height()));
  EXPECT_EQ(place.right() + 1, std::lround(11 * mean));
  EXPECT_EQ(place.bottom() + 1, std::lround(11 * metrics.height()));
}

TEST(DialogUnits, ControlsThatMeetInTheTemplateMeetOnTheScreen) {
  const DialogUnits units(QApplication::font());
  for (std::int16_t x = 1; x < 60; ++x) {
    const ControlTemplate left = {ControlKind::Label, 1, "", 0, 0, x, 8};
    const ControlTemplate right = {ControlKind::Label, 2, "", x, 0, 7, 8};
    EXPECT_EQ(units.PlaceOf(left).right() + 1, units.PlaceOf(right).left());
  }
}

TEST(DialogUnits, GrowWithTheFont) {
  QFont twice = QApplication::font();
  twice.setPixelSize(40);
  QFont once = twice;
  once.setPixelSize(20);
  const DialogTemplate dialog = {1, "", 100, 100, 0, {}};
  const QSize small = DialogUnits(once).SizeOf(dialog);
  const QSize large = DialogUnits(twice).SizeOf(dialog);
  EXPECT_NEAR(large.width(), 2 * small.width(), small.width() / 10);
  EXPECT_NEAR(large.height(), 2 * small.height(), small.height() / 10);
}

}  // namespace
}  // namespace platform::qt
