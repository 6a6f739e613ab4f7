// Tabs above a frame; the pages are ordinary controls.
#pragma once

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

class TabControl final : public Control {
 public:
  using Control::Control;

  std::int32_t Insert(const std::string& text);
  bool TabRect(std::int32_t tab, Rect* rect) const;  // from the control's corner
  bool Select(std::int32_t tab);
  std::int32_t Selected() const;
  // The next or the one before, as a person chooses it.
  void Step(int by);
  // Where the pages lie, in the window's inside.
  Rect Page() const;

  LRESULT OnNotify(NMHDR& notice) override;

 private:
  std::int32_t Count() const;
};

}  // namespace platform::ui
