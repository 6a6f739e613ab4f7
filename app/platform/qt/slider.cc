#include "app/platform/qt/slider.h"

#include <QSignalBlocker>
#include <algorithm>

#include "app/platform/qt/scrolled_past.h"

namespace platform::qt {

class Slider::Widget : public ScrolledPast<QSlider> {
 public:
  using ScrolledPast::ScrolledPast;
};

Slider::Slider(ControlHost& host, const ControlTemplate& from)
    : Control(host, from), slider(new Widget(Qt::Horizontal, host.Inside())) {
  slider->setTickPosition(QSlider::TicksBelow);
  slider->setFocusPolicy(Qt::StrongFocus);
  connect(slider, &QSlider::valueChanged, this,
          [this](int position) { this->host.Notify(id, Notice::Scrolled, position); });
  Adopt(slider);
}

void Slider::SetRange(std::int32_t least, std::int32_t most) {
  const QSignalBlocker quiet(slider);
  slider->setRange(least, most);
  slider->setPageStep(std::max(1, (most - least) / 5));
  slider->update();
}

void Slider::SetPos(std::int32_t position) {
  const QSignalBlocker quiet(slider);
  slider->setValue(position);
  slider->update();
}

}  // namespace platform::qt
