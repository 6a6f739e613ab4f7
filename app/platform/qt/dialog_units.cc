#include "app/platform/qt/dialog_units.h"

#include <QFontMetricsF>
#include <cmath>

namespace platform::qt {

DialogUnits::DialogUnits(const QFont& font) {
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  const QFontMetricsF metrics(font);
  across = metrics.horizontalAdvance(letters) / static_cast<double>(letters.size()) / 4;
  down = metrics.height() / 8;
}

// By its edges, so that controls that meet in the template meet on the screen.
QRect DialogUnits::PlaceOf(const ControlTemplate& control) const {
  const auto edge = [](int units, double unit) {
    return static_cast<int>(std::lround(units * unit));
  };
  const int left = edge(control.x, across);
  const int top = edge(control.y, down);
  return QRect(left, top, edge(control.x + control.width, across) - left,
               edge(control.y + control.height, down) - top);
}

QSize DialogUnits::SizeOf(const DialogTemplate& dialog) const {
  return QSize(static_cast<int>(std::ceil(dialog.width * across)),
               static_cast<int>(std::ceil(dialog.height * down)));
}

}  // namespace platform::qt
