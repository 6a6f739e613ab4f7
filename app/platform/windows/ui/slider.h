// Horizontal, with ticks below.
#pragma once

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

class Slider final : public Control {
 public:
  using Control::Control;

  void SetRange(std::int32_t least, std::int32_t most);
  void SetTicFreq(std::int32_t every) { Ask(handle, TBM_SETTICFREQ, every); }
  void SetPos(std::int32_t position);
  std::int32_t Pos() const { return static_cast<std::int32_t>(Ask(handle, TBM_GETPOS)); }

  void OnScroll() override;

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override;

 private:
  std::int32_t told = 0;
};

}  // namespace platform::ui
