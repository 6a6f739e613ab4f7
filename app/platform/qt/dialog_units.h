// Places of a template in pixels.
#pragma once

#include <QFont>
#include <QRect>

#include "app/platform/dialog_template.h"

namespace platform::qt {

class DialogUnits {
 public:
  // 4 across are the mean width of its characters, 8 down its height.
  explicit DialogUnits(const QFont& font);
  // Pixels.
  DialogUnits(double across, double down) : across(across), down(down) {}

  QRect PlaceOf(const ControlTemplate& control) const;
  QSize SizeOf(const DialogTemplate& dialog) const;

 private:
  double across;
  double down;
};

}  // namespace platform::qt
