// A horizontal slider with ticks below it.
#pragma once

#include <QSlider>

#include "app/platform/qt/control.h"

namespace platform::qt {

class Slider final : public Control {
 public:
  Slider(ControlHost& host, const ControlTemplate& from);

  void SetRange(std::int32_t least, std::int32_t most);
  void SetTicFreq(std::int32_t every) { slider->setTickInterval(every); }
  void SetPos(std::int32_t position);
  std::int32_t Pos() const { return slider->value(); }

 private:
  class Widget;
  QSlider* const slider;
};

}  // namespace platform::qt
