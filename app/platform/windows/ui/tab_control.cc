#include "app/platform/windows/ui/tab_control.h"

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

std::int32_t TabControl::Count() const {
  return static_cast<std::int32_t>(Ask(handle, TCM_GETITEMCOUNT));
}

std::int32_t TabControl::Selected() const {
  return static_cast<std::int32_t>(Ask(handle, TCM_GETCURSEL));
}

std::int32_t TabControl::Insert(const std::string& tab) {
  std::wstring wide = Marked(Wide(tab));
  TCITEMW item = {};
  item.mask = TCIF_TEXT;
  item.pszText = wide.data();
  return static_cast<std::int32_t>(Ask(handle, TCM_INSERTITEMW, Count(), &item));
}

bool TabControl::TabRect(std::int32_t tab, Rect* rect) const {
  RECT found = {};
  if (tab < 0 || tab >= Count() || !Ask(handle, TCM_GETITEMRECT, tab, &found)) return false;
  *rect = RectOf(found);
  return true;
}

bool TabControl::Select(std::int32_t tab) {
  if (tab < 0 || tab >= Count()) return false;
  Ask(handle, TCM_SETCURSEL, tab);
  return true;
}

void TabControl::Step(int by) {
  const std::int32_t count = Count();
  if (count == 0) return;
  SetFocus(handle);
  if (!host.GoesOn()) return;
  const std::int32_t tab = (Selected() + by + count) % count;
  Select(tab);
  host.Notify(id, Notice::SelectionChanged, tab);
}

Rect TabControl::Page() const {
  RECT page = RectOf(Place());
  Ask(handle, TCM_ADJUSTRECT, FALSE, &page);
  return RectOf(page);
}

LRESULT TabControl::OnNotify(NMHDR& notice) {
  // Refused where leaving an edit keeps the person from it.
  if (notice.code == TCN_SELCHANGING) return host.GoesOn() ? FALSE : TRUE;
  if (notice.code == TCN_SELCHANGE) host.Notify(id, Notice::SelectionChanged, Selected());
  return 0;
}

}  // namespace platform::ui
