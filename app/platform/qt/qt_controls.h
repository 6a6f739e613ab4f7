// Controls behind the seam, by Qt.
#pragma once

#include <map>
#include <vector>

#include "app/platform/controls_by_kind.h"
#include "app/platform/qt/dialog_window.h"
#include "app/platform/qt/drop_list.h"
#include "app/platform/qt/edits.h"
#include "app/platform/qt/list_view.h"
#include "app/platform/qt/slider.h"
#include "app/platform/qt/tab_control.h"

namespace platform::qt {

struct Kinds {
  using Window = DialogWindow;
  using Table = WindowTable;
  using Control = qt::Control;
  using Edit = qt::Edit;
  using DropList = qt::DropList;
  using ListView = qt::ListView;
  using TabControl = qt::TabControl;
  using Slider = qt::Slider;
};

class QtControls : public ControlsByKind<Kinds> {
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

 private:
  struct Move {
    WindowHandle window;
    std::uint32_t id;
    Rect rect;
    std::uint32_t flags;
  };

  std::map<DeferHandle, std::vector<Move>> deferred;
  DeferHandle lastDefer = 0;
};

}  // namespace platform::qt
