// Controls behind the seam: finds the control of a number, of the kind that an operation is for,
// and hands over to it. As long as the interface that it carries out.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "app/platform/controls.h"
#include "app/platform/qt/dialog_window.h"

namespace platform::qt {

class QtControls : public Controls {
 public:
  explicit QtControls(WindowTable& windows) : windows(windows) {}

  bool HasControl(WindowHandle window, std::uint32_t id) override;
  bool GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) override;
  bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                     std::uint32_t flags) override;
  DeferHandle BeginDeferWindowPos(std::int32_t count) override;
  DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                             const Rect& rect, std::uint32_t flags) override;
  bool EndDeferWindowPos(DeferHandle defer) override;
  bool InvalidateControl(WindowHandle window, std::uint32_t id) override;

  bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) override;
  bool IsControlVisible(WindowHandle window, std::uint32_t id) override;
  bool EnableControl(WindowHandle window, std::uint32_t id, bool enable) override;
  bool IsControlEnabled(WindowHandle window, std::uint32_t id) override;
  bool SetControlFocus(WindowHandle window, std::uint32_t id) override;
  std::uint32_t GetControlFocus(WindowHandle window) override;
  bool SetDefaultButton(WindowHandle window, std::uint32_t id) override;
  bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) override;

  bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) override;
  std::string GetDlgItemTextA(WindowHandle window, std::uint32_t id) override;
  bool SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) override;
  bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) override;
  bool IsDlgButtonChecked(WindowHandle window, std::uint32_t id) override;

  std::int32_t ComboAddString(WindowHandle window, std::uint32_t id,
                              const std::string& text) override;
  bool ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) override;
  bool ComboResetContent(WindowHandle window, std::uint32_t id) override;
  std::int32_t ComboGetCount(WindowHandle window, std::uint32_t id) override;
  std::string ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) override;
  std::int32_t ComboFindString(WindowHandle window, std::uint32_t id,
                               const std::string& text) override;
  std::int32_t ComboFindStringExact(WindowHandle window, std::uint32_t id,
                                    const std::string& text) override;
  bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) override;
  std::int32_t ComboGetCurSel(WindowHandle window, std::uint32_t id) override;
  bool ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row,
                        std::int32_t data) override;
  std::int32_t ComboGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) override;

  std::int32_t ListInsertColumn(WindowHandle window, std::uint32_t id, const std::string& text,
                                std::int32_t width) override;
  std::int32_t ListGetColumnWidth(WindowHandle window, std::uint32_t id,
                                  std::int32_t column) override;
  bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                          std::int32_t width) override;
  bool ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                          std::vector<std::int32_t>* order) override;
  bool ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                          const std::vector<std::int32_t>& order) override;
  std::int32_t ListGetClientWidth(WindowHandle window, std::uint32_t id) override;
  std::int32_t ListInsertItem(WindowHandle window, std::uint32_t id, std::uint32_t data) override;
  bool ListDeleteAllItems(WindowHandle window, std::uint32_t id) override;
  std::int32_t ListGetItemCount(WindowHandle window, std::uint32_t id) override;
  bool ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t column,
                       const std::string& text) override;
  std::string ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                              std::int32_t column) override;
  std::uint32_t ListGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) override;
  bool ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row,
                      bool selected) override;
  std::int32_t ListGetNextSelected(WindowHandle window, std::uint32_t id,
                                   std::int32_t after) override;
  bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) override;

  std::int32_t TabInsertItem(WindowHandle window, std::uint32_t id,
                             const std::string& text) override;
  bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab, Rect* rect) override;
  bool TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) override;
  std::int32_t TabGetCurSel(WindowHandle window, std::uint32_t id) override;

  bool SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least,
                      std::int32_t most) override;
  bool SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) override;
  bool SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) override;
  std::int32_t SliderGetPos(WindowHandle window, std::uint32_t id) override;

  bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) override;
  bool SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                      std::int32_t height, std::int32_t weight, bool underline) override;
  bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) override;
  bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) override;
  bool SetHandCursor(WindowHandle window, std::uint32_t id) override;

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

  // Null when there is none of that number, or it is of another kind.
  template <typename Kind = Control>
  Kind* Find(WindowHandle window, std::uint32_t id) const {
    DialogWindow* const found = windows.Find(window);
    return found ? dynamic_cast<Kind*>(found->Find(id)) : nullptr;
  }

  WindowTable& windows;
  std::map<DeferHandle, std::vector<Move>> deferred;
  DeferHandle lastDefer = 0;
};

}  // namespace platform::qt
