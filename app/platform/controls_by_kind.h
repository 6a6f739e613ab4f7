// Controls behind the seam where each kind is a class: finds the control of a number, of the kind
// that an operation is for, and hands over to it. `Kinds` names the classes: Window, Table (of the
// windows), Control and those that derive from it. What the implementations do differently,
// deferred moves and tool tips, is left to them. As long as the interface that it carries out.
#pragma once

#include "app/platform/controls.h"
#include "app/platform/pending_updates.h"

namespace platform {

template <typename Kinds>
class ControlsByKind : public Controls {
  using Window = typename Kinds::Window;
  using Control = typename Kinds::Control;
  using Edit = typename Kinds::Edit;
  using DropList = typename Kinds::DropList;
  using ListView = typename Kinds::ListView;
  using TabControl = typename Kinds::TabControl;
  using Slider = typename Kinds::Slider;

 public:
  explicit ControlsByKind(typename Kinds::Table& windows) : windows(windows) {}

  bool HasControl(WindowHandle window, std::uint32_t id) override { return Find(window, id); }

  // --- Places

  bool GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) override {
    const Control* const control = Find(window, id);
    if (control) *rect = control->Place();
    return control;
  }

  bool SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                     std::uint32_t flags) override {
    Control* const control = Find(window, id);
    if (control) control->SetPlace(rect, flags);
    return control;
  }

  bool InvalidateControl(WindowHandle window, std::uint32_t id) override {
    if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.redraw = true});
    Control* const control = Find(window, id);
    if (control) control->Redraw();
    return control;
  }

  // --- What all have

  bool ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) override {
    Control* const control = Find(window, id);
    if (control) windows.Find(window)->Show(*control, command != SW_HIDE);
    return control;
  }

  bool IsControlVisible(WindowHandle window, std::uint32_t id) override {
    const Control* const control = Find(window, id);
    return control && control->IsShown();
  }

  bool EnableControl(WindowHandle window, std::uint32_t id, bool enable) override {
    Control* const control = Find(window, id);
    if (control) windows.Find(window)->Enable(*control, enable);
    return control;
  }

  bool IsControlEnabled(WindowHandle window, std::uint32_t id) override {
    const Control* const control = Find(window, id);
    return control && control->IsEnabled();
  }

  bool SetControlFocus(WindowHandle window, std::uint32_t id) override {
    Control* const control = Find(window, id);
    if (!control || !control->TakesFocus()) return false;
    windows.Find(window)->FocusOn(*control);
    return true;
  }

  std::uint32_t GetControlFocus(WindowHandle window) override {
    const Window* const found = windows.Find(window);
    const Control* const control = found ? found->Focused() : nullptr;
    return control ? control->id : 0;
  }

  bool SetDefaultButton(WindowHandle window, std::uint32_t id) override {
    Window* const found = windows.Find(window);
    return found && found->SetDefaultButton(id);
  }

  bool PostControlMessage(WindowHandle window, std::uint32_t id, std::uint32_t message) override {
    if (windows.OnOwnThread() && !HasControl(window, id)) return false;
    return windows.Post(window, [id, message](Window& target) {
      target.SendNotice(id, Notice::ControlMessage, static_cast<std::int32_t>(message));
    });
  }

  // --- Texts and check marks

  bool SetDlgItemTextA(WindowHandle window, std::uint32_t id, const std::string& text) override {
    if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.text = text});
    windows.DropText(window, id);
    Control* const control = Find(window, id);
    return control && control->SetText(text);
  }

  std::string GetDlgItemTextA(WindowHandle window, std::uint32_t id) override {
    const Control* const control = Find(window, id);
    return control ? control->Text() : std::string();
  }

  bool SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) override {
    Edit* const edit = Find<Edit>(window, id);
    if (edit) edit->SetCaret(offset);
    return edit;
  }

  bool CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) override {
    if (!windows.OnOwnThread()) return windows.UpdateLater(window, id, {.checked = checked});
    windows.DropCheck(window, id);
    Control* const control = Find(window, id);
    return control && control->SetChecked(checked);
  }

  bool IsDlgButtonChecked(WindowHandle window, std::uint32_t id) override {
    const Control* const control = Find(window, id);
    return control && control->IsChecked();
  }

  // --- Drop lists

  std::int32_t ComboAddString(WindowHandle window, std::uint32_t id,
                              const std::string& text) override {
    DropList* const list = Find<DropList>(window, id);
    return list ? list->Add(text) : kNoRow;
  }

  bool ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    DropList* const list = Find<DropList>(window, id);
    return list && list->Delete(row);
  }

  bool ComboResetContent(WindowHandle window, std::uint32_t id) override {
    DropList* const list = Find<DropList>(window, id);
    if (list) list->Reset();
    return list;
  }

  std::int32_t ComboGetCount(WindowHandle window, std::uint32_t id) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().Count() : -1;
  }

  std::string ComboGetLBText(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().Text(row) : std::string();
  }

  std::int32_t ComboFindString(WindowHandle window, std::uint32_t id,
                               const std::string& text) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().FindPrefix(text) : kNoRow;
  }

  std::int32_t ComboFindStringExact(WindowHandle window, std::uint32_t id,
                                    const std::string& text) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().FindExact(text) : kNoRow;
  }

  bool ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    DropList* const list = Find<DropList>(window, id);
    return list && list->Select(row);
  }

  std::int32_t ComboGetCurSel(WindowHandle window, std::uint32_t id) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().Selected() : kNoRow;
  }

  bool ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row,
                        std::int32_t data) override {
    DropList* const list = Find<DropList>(window, id);
    return list && list->SetData(row, data);
  }

  std::int32_t ComboGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    const DropList* const list = Find<DropList>(window, id);
    return list ? list->Rows().Data(row) : -1;
  }

  // --- List views

  std::int32_t ListInsertColumn(WindowHandle window, std::uint32_t id, const std::string& text,
                                std::int32_t width) override {
    ListView* const list = Find<ListView>(window, id);
    return list ? list->InsertColumn(text, width) : -1;
  }

  std::int32_t ListGetColumnWidth(WindowHandle window, std::uint32_t id,
                                  std::int32_t column) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->ColumnWidth(column) : -1;
  }

  bool ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                          std::int32_t width) override {
    ListView* const list = Find<ListView>(window, id);
    return list && list->SetColumnWidth(column, width);
  }

  bool ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                          std::vector<std::int32_t>* order) override {
    const ListView* const list = Find<ListView>(window, id);
    if (list) *order = list->Order();
    return list;
  }

  bool ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                          const std::vector<std::int32_t>& order) override {
    ListView* const list = Find<ListView>(window, id);
    return list && list->SetOrder(order);
  }

  std::int32_t ListGetClientWidth(WindowHandle window, std::uint32_t id) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->ClientWidth() : -1;
  }

  std::int32_t ListInsertItem(WindowHandle window, std::uint32_t id, std::uint32_t data) override {
    ListView* const list = Find<ListView>(window, id);
    return list ? list->InsertItem(data) : kNoRow;
  }

  bool ListDeleteAllItems(WindowHandle window, std::uint32_t id) override {
    ListView* const list = Find<ListView>(window, id);
    if (list) list->DeleteAllItems();
    return list;
  }

  std::int32_t ListGetItemCount(WindowHandle window, std::uint32_t id) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->ItemCount() : -1;
  }

  bool ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row, std::int32_t column,
                       const std::string& text) override {
    ListView* const list = Find<ListView>(window, id);
    return list && list->SetItemText(row, column, text);
  }

  std::string ListGetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                              std::int32_t column) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->ItemText(row, column) : std::string();
  }

  std::uint32_t ListGetItemData(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->ItemData(row) : 0;
  }

  bool ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row,
                      bool selected) override {
    ListView* const list = Find<ListView>(window, id);
    return list && list->SelectItem(row, selected);
  }

  std::int32_t ListGetNextSelected(WindowHandle window, std::uint32_t id,
                                   std::int32_t after) override {
    const ListView* const list = Find<ListView>(window, id);
    return list ? list->NextSelected(after) : kNoRow;
  }

  bool ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) override {
    ListView* const list = Find<ListView>(window, id);
    return list && list->EnsureVisible(row);
  }

  // --- Tabs and sliders

  std::int32_t TabInsertItem(WindowHandle window, std::uint32_t id,
                             const std::string& text) override {
    TabControl* const tabs = Find<TabControl>(window, id);
    return tabs ? tabs->Insert(text) : -1;
  }

  bool TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                      Rect* rect) override {
    const TabControl* const tabs = Find<TabControl>(window, id);
    return tabs && tabs->TabRect(tab, rect);
  }

  bool TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) override {
    TabControl* const tabs = Find<TabControl>(window, id);
    return tabs && tabs->Select(tab);
  }

  std::int32_t TabGetCurSel(WindowHandle window, std::uint32_t id) override {
    const TabControl* const tabs = Find<TabControl>(window, id);
    return tabs ? tabs->Selected() : -1;
  }

  bool SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least,
                      std::int32_t most) override {
    Slider* const slider = Find<Slider>(window, id);
    if (slider) slider->SetRange(least, most);
    return slider;
  }

  bool SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) override {
    Slider* const slider = Find<Slider>(window, id);
    if (slider) slider->SetTicFreq(every);
    return slider;
  }

  bool SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) override {
    Slider* const slider = Find<Slider>(window, id);
    if (slider) slider->SetPos(position);
    return slider;
  }

  std::int32_t SliderGetPos(WindowHandle window, std::uint32_t id) override {
    const Slider* const slider = Find<Slider>(window, id);
    return slider ? slider->Pos() : -1;
  }

  // --- Looks

  bool SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) override {
    Control* const control = Find(window, id);
    return control && control->SetPicture(bitmap);
  }

  bool SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                      std::int32_t height, std::int32_t weight, bool underline) override {
    Control* const control = Find(window, id);
    if (control) control->SetFont(face, height, weight, underline);
    return control;
  }

  bool SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) override {
    Control* const control = Find(window, id);
    if (control) control->SetTextColour(colour);
    return control;
  }

  bool SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) override {
    Control* const control = Find(window, id);
    if (control) control->SetBackgroundColour(colour);
    return control;
  }

  bool SetHandCursor(WindowHandle window, std::uint32_t id) override {
    Control* const control = Find(window, id);
    return control && control->SetHandCursor();
  }

 protected:
  // Null when there is none of that number, or it is of another kind.
  template <typename Kind = Control>
  Kind* Find(WindowHandle window, std::uint32_t id) const {
    Window* const found = windows.Find(window);
    return found ? dynamic_cast<Kind*>(found->Find(id)) : nullptr;
  }

  typename Kinds::Table& windows;
};

}  // namespace platform
