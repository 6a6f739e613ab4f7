// A widget that the wheel scrolls past, unless it was chosen first.
#pragma once

#include <QWheelEvent>

namespace platform::qt {

template <typename Base>
class ScrolledPast : public Base {
 public:
  using Base::Base;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    if (this->hasFocus()) {
      Base::wheelEvent(event);
    } else {
      event->ignore();
    }
  }
};

}  // namespace platform::qt
