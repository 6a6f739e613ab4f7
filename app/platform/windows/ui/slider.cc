#include "app/platform/windows/ui/slider.h"

namespace platform::ui {

void Slider::SetRange(std::int32_t least, std::int32_t most) {
  Ask(handle, TBM_SETRANGEMIN, FALSE, least);
  Ask(handle, TBM_SETRANGEMAX, TRUE, most);
  told = Pos();
}

void Slider::SetPos(std::int32_t position) {
  Ask(handle, TBM_SETPOS, TRUE, position);
  told = Pos();
}

// The system also tells that a move has ended, which is no move.
void Slider::OnScroll() {
  if (Pos() == told) return;
  told = Pos();
  host.Notify(id, Notice::Scrolled, told);
}

// The wheel over a page passes a slider that doesn't have the focus.
LRESULT Slider::Message(UINT message, WPARAM w, LPARAM l) {
  if (message == WM_MOUSEWHEEL && GetFocus() != handle) return 0;
  return Inherited(message, w, l);
}

}  // namespace platform::ui
