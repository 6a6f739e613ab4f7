// Controls behind the seam, by the system's own.
#pragma once

#include "app/platform/controls_by_kind.h"
#include "app/platform/windows/ui/dialog_window.h"
#include "app/platform/windows/ui/drop_list.h"
#include "app/platform/windows/ui/edits.h"
#include "app/platform/windows/ui/list_view.h"
#include "app/platform/windows/ui/slider.h"
#include "app/platform/windows/ui/tab_control.h"

namespace platform::ui {

struct Kinds {
  using Window = DialogWindow;
  using Table = WindowTable;
  using Control = ui::Control;
  using Edit = ui::Edit;
  using DropList = ui::DropList;
  using ListView = ui::ListView;
  using TabControl = ui::TabControl;
  using Slider = ui::Slider;
};

class WindowsControls final : public ControlsByKind<Kinds> {
 public:
  using ControlsByKind::ControlsByKind;

  DeferHandle BeginDeferWindowPos(std::int32_t count) override;
  DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                             const Rect& rect, std::uint32_t flags) override;
  bool EndDeferWindowPos(DeferHandle defer) override;

  bool CreateToolTip(WindowHandle window) override;
  bool SetToolTipWidth(WindowHandle window, std::int32_t pixels) override;
  bool SetToolTipTime(WindowHandle window, std::int32_t ms) override;
  bool ActivateToolTip(WindowHandle window, bool active) override;
  bool AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                  const std::string& text) override;
  bool AddTool(WindowHandle window, std::uint32_t id) override;
  bool EnableToolTips(WindowHandle window) override;
};

}  // namespace platform::ui
