// The controls of a window, each known by its number. An operation on a number that isn't in the
// window, or isn't of the kind that it is for, is false, -1, empty or nothing, as its result
// allows. What the program sets causes no Notice, except the header's. User interface's thread,
// except what says otherwise. The class is long because each kind of control has operations of its
// own, and all find theirs by a window and a number.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/platform/canvas.h"
#include "app/platform/desktop.h"

namespace platform {

constexpr std::uint32_t SWP_NOSIZE = 0x1;
constexpr std::uint32_t SWP_NOZORDER = 0x4;
constexpr std::uint32_t SWP_NOACTIVATE = 0x10;
constexpr std::uint32_t SWP_NOOWNERZORDER = 0x200;
constexpr std::uint32_t SWP_DEFERERASE = 0x2000;

using DeferHandle = std::uintptr_t;  // 0 for none

constexpr std::int32_t kNoRow = -1;

class Controls {
 public:
  virtual ~Controls() = default;

  virtual bool HasControl(WindowHandle window, std::uint32_t id) = 0;

  // Places, in pixels of the window's inside.
  virtual bool GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) = 0;
  virtual bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                             std::uint32_t flags) = 0;
  // Several at once: nothing moves before EndDeferWindowPos.
  virtual DeferHandle BeginDeferWindowPos(std::int32_t count) = 0;
  virtual DeferHandle DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                                     const Rect& rect, std::uint32_t flags) = 0;
  virtual bool EndDeferWindowPos(DeferHandle defer) = 0;
  // Draws it anew. Any thread.
  virtual bool InvalidateControl(WindowHandle window, std::uint32_t id) = 0;

  virtual bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) = 0;
  virtual bool IsControlVisible(WindowHandle window,
                                std::uint32_t id) = 0;  // as ShowControl set it
  virtual bool EnableControl(WindowHandle window, std::uint32_t id, bool enable) = 0;
  virtual bool IsControlEnabled(WindowHandle window, std::uint32_t id) = 0;
  virtual bool SetControlFocus(WindowHandle window, std::uint32_t id) = 0;
  virtual std::uint32_t GetControlFocus(WindowHandle window) = 0;  // 0 for none
  virtual bool SetDefaultButton(WindowHandle window, std::uint32_t id) = 0;
  virtual bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) = 0;

  // The text of a label, edit, button or box, as it was set: of a template with its mnemonic mark.
  // A set one shows as it is. Setting may come from any thread and doesn't wait; what was set last
  // is what is shown. Reading sees what the user interface's thread has set, and the person.
  virtual bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) = 0;
  virtual std::string GetDlgItemTextA(WindowHandle window, std::uint32_t id) = 0;
  // Where typing goes on in an edit: bytes from its start. Removes a selection.
  virtual bool SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) = 0;

  // Check boxes and radio buttons; a checked radio button unchecks the others of its run. Checking
  // may come from any thread and doesn't wait.
  virtual bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) = 0;
  virtual bool IsDlgButtonChecked(WindowHandle window, std::uint32_t id) = 0;

  // Drop lists. Searches and the order of a sorted list fold the case of ASCII letters.
  virtual std::int32_t ComboAddString(WindowHandle window, std::uint32_t id,
                                      const std::string& text) = 0;  // its row
  virtual bool ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) = 0;
  virtual bool ComboResetContent(WindowHandle window, std::uint32_t id) = 0;
  virtual std::int32_t ComboGetCount(WindowHandle window, std::uint32_t id) = 0;
  virtual std::string ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) = 0;
  // The first row that begins with `text`, and the first that is equal to it.
  virtual std::int32_t ComboFindString(WindowHandle window, std::uint32_t id,
                                       const std::string& text) = 0;
  virtual std::int32_t ComboFindStringExact(WindowHandle window, std::uint32_t id,
                                            const std::string& text) = 0;
  virtual bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) = 0;
  virtual std::int32_t ComboGetCurSel(WindowHandle window, std::uint32_t id) = 0;
  virtual bool ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row,
                                std::int32_t data) = 0;
  virtual std::int32_t ComboGetItemData(WindowHandle window, std::uint32_t id,
                                        std::int32_t row) = 0;  // 0 at first

  // List views. Columns are numbered in the order in which they were inserted, whatever the order
  // in which they stand.
  virtual std::int32_t ListInsertColumn(WindowHandle window, std::uint32_t id,
                                        const std::string& text, std::int32_t width) = 0;
  virtual std::int32_t ListGetColumnWidth(WindowHandle window, std::uint32_t id,
                                          std::int32_t column) = 0;
  virtual bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                                  std::int32_t width) = 0;
  // Column numbers from left to right. Setting refuses what isn't a permutation of them.
  virtual bool ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                                  std::vector<std::int32_t>* order) = 0;
  virtual bool ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                                  const std::vector<std::int32_t>& order) = 0;
  // Pixels that the columns have to share: the list without its frame and scroll bar.
  virtual std::int32_t ListGetClientWidth(WindowHandle window, std::uint32_t id) = 0;
  // A row with empty texts at the end.
  virtual std::int32_t ListInsertItem(WindowHandle window, std::uint32_t id,
                                      std::uint32_t data) = 0;
  virtual bool ListDeleteAllItems(WindowHandle window, std::uint32_t id) = 0;
  virtual std::int32_t ListGetItemCount(WindowHandle window, std::uint32_t id) = 0;
  virtual bool ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                               std::int32_t column, const std::string& text) = 0;
  virtual std::string ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                                      std::int32_t column) = 0;
  virtual std::uint32_t ListGetItemData(WindowHandle window, std::uint32_t id,
                                        std::int32_t row) = 0;
  virtual bool ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row,
                              bool selected) = 0;
  // The first selected row behind `after` (-1 for the first of all), kNoRow for none.
  virtual std::int32_t ListGetNextSelected(WindowHandle window, std::uint32_t id,
                                           std::int32_t after) = 0;
  virtual bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) = 0;

  // Tab controls.
  virtual std::int32_t TabInsertItem(WindowHandle window, std::uint32_t id,
                                     const std::string& text) = 0;
  virtual bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                              Rect* rect) = 0;  // from the control's corner
  virtual bool TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) = 0;
  virtual std::int32_t TabGetCurSel(WindowHandle window, std::uint32_t id) = 0;

  // Sliders. A position beyond an end becomes the end.
  virtual bool SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least,
                              std::int32_t most) = 0;
  virtual bool SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) = 0;
  virtual bool SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) = 0;
  virtual std::int32_t SliderGetPos(WindowHandle window, std::uint32_t id) = 0;

  // Looks.
  virtual bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) = 0;
  // An empty face keeps the present one, 0 the present height (pixels) and weight (400 is normal,
  // 700 bold).
  virtual bool SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                              std::int32_t height, std::int32_t weight, bool underline) = 0;
  virtual bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) = 0;
  virtual bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) = 0;
  // The pointer is a pointing hand above it. False when there is no such pointer.
  virtual bool SetHandCursor(WindowHandle window, std::uint32_t id) = 0;

  // The tool tip control of a window: shows the text of a tool below the pointer. One a window.
  virtual bool CreateToolTip(WindowHandle window) = 0;
  virtual bool SetToolTipWidth(WindowHandle window, std::int32_t pixels) = 0;
  virtual bool SetToolTipTime(WindowHandle window, std::int32_t ms) = 0;  // shown at most so long
  virtual bool ActivateToolTip(WindowHandle window, bool active) = 0;
  virtual bool AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                          const std::string& text) = 0;
  virtual bool AddTool(WindowHandle window, std::uint32_t id) = 0;  // text by OnToolTip
  // Every control is asked for by OnToolTip, tool or not.
  virtual bool EnableToolTips(WindowHandle window) = 0;
};

// Of the installed platform; see platform.h.
Controls& controls();

}  // namespace platform
