#include "app/platform/qt/qt_controls.h"

#include "app/platform/qt/drop_list.h"
#include "app/platform/qt/edits.h"
#include "app/platform/qt/list_view.h"
#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/slider.h"
#include "app/platform/qt/tab_control.h"

namespace platform::qt {

bool QtControls::HasControl(WindowHandle window, std::uint32_t id) { return Find(window, id); }

// --- Places

bool QtControls::GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) {
  const Control* const control = Find(window, id);
  if (control) *rect = RectOf(control->Widget()->geometry());
  return control;
}

bool QtControls::SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                               std::uint32_t flags) {
  const Control* const control = Find(window, id);
  if (!control) return false;
  if (flags & SWP_NOSIZE) {
    control->Widget()->move(rect.left, rect.top);
  } else {
    control->Widget()->setGeometry(RectOf(rect));
  }
  return true;
}

DeferHandle QtControls::BeginDeferWindowPos(std::int32_t count) {
  if (count < 0) return 0;
  deferred[++lastDefer].reserve(static_cast<std::size_t>(count));
  return lastDefer;
}

DeferHandle QtControls::DeferWindowPos(DeferHandle defer, WindowHandle window, std::uint32_t id,
                                       const Rect& rect, std::uint32_t flags) {
  const auto found = deferred.find(defer);
  if (found == deferred.end() || !HasControl(window, id)) return 0;
  found->second.push_back({window, id, rect, flags});
  return defer;
}

bool QtControls::EndDeferWindowPos(DeferHandle defer) {
  const auto found = deferred.find(defer);
  if (found == deferred.end()) return false;
  const std::vector<Move> moves = std::move(found->second);
  deferred.erase(found);
  for (const Move& move : moves)
    QtControls::SetControlPos(move.window, move.id, move.rect, move.flags);
  return true;
}

bool QtControls::InvalidateControl(WindowHandle window, std::uint32_t id) {
  if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.redraw = true});
  const Control* const control = Find(window, id);
  if (control) control->Widget()->update();
  return control;
}

// --- What all have

bool QtControls::ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) {
  Control* const control = Find(window, id);
  if (control) windows.Find(window)->Show(*control, command != SW_HIDE);
  return control;
}

bool QtControls::IsControlVisible(WindowHandle window, std::uint32_t id) {
  const Control* const control = Find(window, id);
  return control && control->IsShown();
}

bool QtControls::EnableControl(WindowHandle window, std::uint32_t id, bool enable) {
  Control* const control = Find(window, id);
  if (control) windows.Find(window)->Enable(*control, enable);
  return control;
}

bool QtControls::IsControlEnabled(WindowHandle window, std::uint32_t id) {
  const Control* const control = Find(window, id);
  return control && control->IsEnabled();
}

bool QtControls::SetControlFocus(WindowHandle window, std::uint32_t id) {
  Control* const control = Find(window, id);
  if (!control || !control->TakesFocus()) return false;
  windows.Find(window)->FocusOn(*control);
  return true;
}

std::uint32_t QtControls::GetControlFocus(WindowHandle window) {
  const DialogWindow* const found = windows.Find(window);
  const Control* const control = found ? found->Focused() : nullptr;
  return control ? control->id : 0;
}

bool QtControls::SetDefaultButton(WindowHandle window, std::uint32_t id) {
  DialogWindow* const found = windows.Find(window);
  return found && found->SetDefaultButton(id);
}

bool QtControls::PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) {
  if (windows.OnOwnThread() && !HasControl(window, id)) return false;
  return windows.Post(window, [id, message](DialogWindow& target) {
    target.SendNotice(id, Notice::ControlMessage, static_cast<std::int32_t>(message));
  });
}

// --- Texts and check marks

bool QtControls::SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) {
  if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.text = text});
  windows.DropText(window, id);
  Control* const control = Find(window, id);
  return control && control->SetText(text);
}

std::string QtControls::GetDlgItemTextA(WindowHandle window, std::uint32_t id) {
  const Control* const control = Find(window, id);
  return control ? control->Text() : std::string();
}

bool QtControls::SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) {
  Edit* const edit = Find<Edit>(window, id);
  if (edit) edit->SetCaret(offset);
  return edit;
}

bool QtControls::CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) {
  if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.checked = checked});
  windows.DropCheck(window, id);
  Control* const control = Find(window, id);
  return control && control->SetChecked(checked);
}

bool QtControls::IsDlgButtonChecked(WindowHandle window, std::uint32_t id) {
  const Control* const control = Find(window, id);
  return control && control->IsChecked();
}

// --- Drop lists

std::int32_t QtControls::ComboAddString(WindowHandle window, std::uint32_t id,
                                        const std::string& text) {
  DropList* const list = Find<DropList>(window, id);
  return list ? list->Add(text) : kNoRow;
}

bool QtControls::ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) {
  DropList* const list = Find<DropList>(window, id);
  return list && list->Delete(row);
}

bool QtControls::ComboResetContent(WindowHandle window, std::uint32_t id) {
  DropList* const list = Find<DropList>(window, id);
  if (list) list->Reset();
  return list;
}

std::int32_t QtControls::ComboGetCount(WindowHandle window, std::uint32_t id) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->Count() : -1;
}

std::string QtControls::ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->RowText(row) : std::string();
}

std::int32_t QtControls::ComboFindString(WindowHandle window, std::uint32_t id,
                                         const std::string& text) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->FindPrefix(text) : kNoRow;
}

std::int32_t QtControls::ComboFindStringExact(WindowHandle window, std::uint32_t id,
                                              const std::string& text) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->FindExact(text) : kNoRow;
}

bool QtControls::ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) {
  DropList* const list = Find<DropList>(window, id);
  return list && list->Select(row);
}

std::int32_t QtControls::ComboGetCurSel(WindowHandle window, std::uint32_t id) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->Selected() : kNoRow;
}

bool QtControls::ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row,
                                  std::int32_t data) {
  DropList* const list = Find<DropList>(window, id);
  return list && list->SetData(row, data);
}

std::int32_t QtControls::ComboGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  const DropList* const list = Find<DropList>(window, id);
  return list ? list->Data(row) : -1;
}

// --- List views

std::int32_t QtControls::ListInsertColumn(WindowHandle window, std::uint32_t id,
                                          const std::string& text, std::int32_t width) {
  ListView* const list = Find<ListView>(window, id);
  return list ? list->InsertColumn(text, width) : -1;
}

std::int32_t QtControls::ListGetColumnWidth(WindowHandle window, std::uint32_t id,
                                            std::int32_t column) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->ColumnWidth(column) : -1;
}

bool QtControls::ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                                    std::int32_t width) {
  ListView* const list = Find<ListView>(window, id);
  return list && list->SetColumnWidth(column, width);
}

bool QtControls::ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                                    std::vector<std::int32_t>* order) {
  const ListView* const list = Find<ListView>(window, id);
  if (list) *order = list->Order();
  return list;
}

bool QtControls::ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                                    const std::vector<std::int32_t>& order) {
  ListView* const list = Find<ListView>(window, id);
  return list && list->SetOrder(order);
}

std::int32_t QtControls::ListGetClientWidth(WindowHandle window, std::uint32_t id) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->ClientWidth() : -1;
}

std::int32_t QtControls::ListInsertItem(WindowHandle window, std::uint32_t id, std::uint32_t data) {
  ListView* const list = Find<ListView>(window, id);
  return list ? list->InsertItem(data) : kNoRow;
}

bool QtControls::ListDeleteAllItems(WindowHandle window, std::uint32_t id) {
  ListView* const list = Find<ListView>(window, id);
  if (list) list->DeleteAllItems();
  return list;
}

std::int32_t QtControls::ListGetItemCount(WindowHandle window, std::uint32_t id) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->ItemCount() : -1;
}

bool QtControls::ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                                 std::int32_t column, const std::string& text) {
  ListView* const list = Find<ListView>(window, id);
  return list && list->SetItemText(row, column, text);
}

std::string QtControls::ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                                        std::int32_t column) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->ItemText(row, column) : std::string();
}

std::uint32_t QtControls::ListGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->ItemData(row) : 0;
}

bool QtControls::ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row,
                                bool selected) {
  ListView* const list = Find<ListView>(window, id);
  return list && list->SelectItem(row, selected);
}

std::int32_t QtControls::ListGetNextSelected(WindowHandle window, std::uint32_t id,
                                             std::int32_t after) {
  const ListView* const list = Find<ListView>(window, id);
  return list ? list->NextSelected(after) : kNoRow;
}

bool QtControls::ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) {
  ListView* const list = Find<ListView>(window, id);
  return list && list->EnsureVisible(row);
}

// --- Tabs and sliders

std::int32_t QtControls::TabInsertItem(WindowHandle window, std::uint32_t id,
                                       const std::string& text) {
  TabControl* const tabs = Find<TabControl>(window, id);
  return tabs ? tabs->Insert(text) : -1;
}

bool QtControls::TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                Rect* rect) {
  const TabControl* const tabs = Find<TabControl>(window, id);
  return tabs && tabs->TabRect(tab, rect);
}

bool QtControls::TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) {
  TabControl* const tabs = Find<TabControl>(window, id);
  return tabs && tabs->Select(tab);
}

std::int32_t QtControls::TabGetCurSel(WindowHandle window, std::uint32_t id) {
  const TabControl* const tabs = Find<TabControl>(window, id);
  return tabs ? tabs->Selected() : -1;
}

bool QtControls::SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least,
                                std::int32_t most) {
  Slider* const slider = Find<Slider>(window, id);
  if (slider) slider->SetRange(least, most);
  return slider;
}

bool QtControls::SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) {
  Slider* const slider = Find<Slider>(window, id);
  if (slider) slider->SetTicFreq(every);
  return slider;
}

bool QtControls::SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) {
  Slider* const slider = Find<Slider>(window, id);
  if (slider) slider->SetPos(position);
  return slider;
}

std::int32_t QtControls::SliderGetPos(WindowHandle window, std::uint32_t id) {
  const Slider* const slider = Find<Slider>(window, id);
  return slider ? slider->Pos() : -1;
}

// --- Looks

bool QtControls::SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) {
  Control* const control = Find(window, id);
  return control && control->SetPicture(bitmap);
}

bool QtControls::SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                                std::int32_t height, std::int32_t weight, bool underline) {
  Control* const control = Find(window, id);
  if (control) control->SetFont(face, height, weight, underline);
  return control;
}

bool QtControls::SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) {
  Control* const control = Find(window, id);
  if (control) control->SetTextColour(colour);
  return control;
}

bool QtControls::SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) {
  Control* const control = Find(window, id);
  if (control) control->SetBackgroundColour(colour);
  return control;
}

bool QtControls::SetHandCursor(WindowHandle window, std::uint32_t id) {
  Control* const control = Find(window, id);
  if (control) control->SetHandCursor();
  return control;
}

// --- Tool tips

bool QtControls::CreateToolTip(WindowHandle window) { return windows.Find(window); }

bool QtControls::SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.width = pixels;
  return found;
}

bool QtControls::SetToolTipTime(WindowHandle window, std::int32_t ms) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.time = ms;
  return found;
}

bool QtControls::ActivateToolTip(WindowHandle window, bool active) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.active = active;
  return found;
}

bool QtControls::AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                            const std::string& text) {
  Rect rect;
  if (!TabGetItemRect(window, id, tab, &rect)) return false;
  windows.Find(window)->tips.tabTools.push_back({id, tab, text});
  return true;
}

bool QtControls::AddTool(WindowHandle window, std::uint32_t id) {
  if (!HasControl(window, id)) return false;
  windows.Find(window)->tips.tools.insert(id);
  return true;
}

bool QtControls::EnableToolTips(WindowHandle window) {
  DialogWindow* const found = windows.Find(window);
  if (found) found->tips.everyControl = true;
  return found;
}

}  // namespace platform::qt
