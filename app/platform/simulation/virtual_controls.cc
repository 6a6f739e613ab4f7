#include "app/platform/simulation/virtual_controls.h"

#include <algorithm>
#include <cstddef>

namespace platform::simulation {
namespace {

// Of a list view: what the columns don't get.
constexpr std::int32_t kListFrame = 2 * 2;
constexpr std::int32_t kScrollBar = 16;

constexpr std::int32_t kTabEdge = 2;
constexpr std::int32_t kTabHeight = 20;

template <typename T>
bool IsIndex(const std::vector<T>& list, std::int32_t index) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size();
}

template <typename T>
auto& At(std::vector<T>& list, std::int32_t index) {
  return list[static_cast<std::size_t>(index)];
}

template <typename T>
std::int32_t Count(const std::vector<T>& list) {
  return static_cast<std::int32_t>(list.size());
}

}  // namespace

// ---- Any control

bool VirtualControls::HasControl(WindowHandle window, std::uint32_t id) {
  return system.Find(window, id) != nullptr;
}

bool VirtualControls::GetControlRect(WindowHandle window, std::uint32_t id, Rect* rect) {
  const VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  *rect = control->place;
  return true;
}

void VirtualControls::SetPlace(VirtualControl& control, const Rect& rect, std::uint32_t flags) {
  const std::int32_t width = flags & SWP_NOSIZE ? control.place.Width() : rect.Width();
  const std::int32_t height = flags & SWP_NOSIZE ? control.place.Height() : rect.Height();
  const Rect place{rect.left, rect.top, rect.left + width, rect.top + height};
  if (place == control.place) return;
  control.place = place;
  system.MarkForPainting(control);
}

bool VirtualControls::SetControlPos(WindowHandle window, std::uint32_t id, const Rect& rect,
                                    std::uint32_t flags) {
  if (journal.Enter("SetControlPos", id, flags)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  SetPlace(*control, rect, flags);
  return true;
}

DeferHandle VirtualControls::BeginDeferWindowPos(std::int32_t count) {
  if (journal.Enter("BeginDeferWindowPos", count) || count < 0) return 0;
  defers[++lastDefer] = {};
  return lastDefer;
}

DeferHandle VirtualControls::DeferWindowPos(DeferHandle defer, WindowHandle window,
                                            std::uint32_t id, const Rect& rect,
                                            std::uint32_t flags) {
  const bool fails = journal.Enter("DeferWindowPos", id, flags).has_value();
  const auto found = defers.find(defer);
  if (found == defers.end()) return 0;
  if (fails || !system.Find(window, id)) {
    defers.erase(found);
    return 0;
  }
  found->second.push_back({window, id, rect, flags});
  return defer;
}

bool VirtualControls::EndDeferWindowPos(DeferHandle defer) {
  const bool fails = journal.Enter("EndDeferWindowPos").has_value();
  const auto found = defers.find(defer);
  if (found == defers.end()) return false;
  if (!fails) {
    for (const Deferred& one : found->second) {
      if (VirtualControl* control = system.Find(one.window, one.id)) {
        SetPlace(*control, one.rect, one.flags);
      }
    }
  }
  defers.erase(found);
  return !fails;
}

bool VirtualControls::InvalidateControl(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("InvalidateControl", id)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  ++control->redraws;
  system.MarkForPainting(*control);
  return true;
}

bool VirtualControls::ShowControl(WindowHandle window, std::uint32_t id, std::int32_t command) {
  if (journal.Enter("ShowControl", id, command)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  const bool visible = command != SW_HIDE;
  if (visible && !control->visible) system.MarkForPainting(*control);
  control->visible = visible;
  return true;
}

bool VirtualControls::IsControlVisible(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id);
  return control && control->visible;
}

bool VirtualControls::EnableControl(WindowHandle window, std::uint32_t id, bool enable) {
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  if (control->enabled != enable) system.MarkForPainting(*control);
  control->enabled = enable;
  return true;
}

bool VirtualControls::IsControlEnabled(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id);
  return control && control->enabled;
}

bool VirtualControls::SetControlFocus(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("SetControlFocus", id)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control || !control->TakesFocus() || !control->Usable()) return false;
  system.SetFocus(*system.Find(window), id);
  return true;
}

std::uint32_t VirtualControls::GetControlFocus(WindowHandle window) {
  const VirtualWindow* const found = system.Find(window);
  return found ? found->focus : 0;
}

bool VirtualControls::SetDefaultButton(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id);
  if (!control || !control->IsButton()) return false;
  system.Find(window)->defaultButton = id;
  return true;
}

bool VirtualControls::PostControlMessage(WindowHandle window, std::uint32_t id,
                                         std::uint32_t message) {
  if (journal.Enter("PostControlMessage", id, message)) return false;
  if (!system.Find(window, id)) return false;
  system.Post(window, [listener = system.Find(window)->listener, id, message] {
    listener->OnNotice(id, Notice::ControlMessage, static_cast<std::int32_t>(message));
  });
  return true;
}

bool VirtualControls::SetDlgItemTextA(WindowHandle window, std::uint32_t id,
                                      const std::string& text) {
  VirtualControl* const control = system.Find(window, id);
  if (!control || !control->HasText()) return false;
  control->text = text;
  control->marksMnemonic = false;
  control->caret = 0;
  control->allSelected = false;
  return true;
}

std::string VirtualControls::GetDlgItemTextA(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id);
  return control && control->HasText() ? control->text : std::string();
}

bool VirtualControls::SetCaret(WindowHandle window, std::uint32_t id, std::uint32_t offset) {
  VirtualControl* const edit = system.Find(window, id, ControlKind::Edit);
  if (!edit) return false;
  edit->caret = std::min(offset, static_cast<std::uint32_t>(edit->text.size()));
  edit->allSelected = false;
  return true;
}

bool VirtualControls::CheckDlgButton(WindowHandle window, std::uint32_t id, bool checked) {
  VirtualControl* const control = system.Find(window, id);
  if (!control ||
      (control->kind != ControlKind::CheckBox && control->kind != ControlKind::RadioButton)) {
    return false;
  }
  system.Check(*system.Find(window), *control, checked);
  return true;
}

bool VirtualControls::IsDlgButtonChecked(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id);
  return control && control->checked;
}

// ---- Drop lists

std::int32_t VirtualControls::ComboAddString(WindowHandle window, std::uint32_t id,
                                             const std::string& text) {
  if (journal.Enter("ComboAddString", id)) return -1;
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list) return -1;
  auto place = list->rows.end();
  if (list->style & kStyleSorted) {
    place = std::upper_bound(
        list->rows.begin(), place, text,
        [](const std::string& a, const auto& row) { return FoldsBefore(a, row.text); });
  }
  const auto row = static_cast<std::int32_t>(place - list->rows.begin());
  list->rows.insert(place, {text, 0});
  if (list->current >= row) ++list->current;
  return row;
}

bool VirtualControls::ComboDeleteString(WindowHandle window, std::uint32_t id, std::int32_t row) {
  if (journal.Enter("ComboDeleteString", id, row)) return false;
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list || !IsIndex(list->rows, row)) return false;
  list->rows.erase(list->rows.begin() + row);
  if (list->current == row) {
    list->current = kNoRow;
  } else if (list->current > row) {
    --list->current;
  }
  return true;
}

bool VirtualControls::ComboResetContent(WindowHandle window, std::uint32_t id) {
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list) return false;
  list->rows.clear();
  list->current = kNoRow;
  return true;
}

std::int32_t VirtualControls::ComboGetCount(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  return list ? Count(list->rows) : -1;
}

std::string VirtualControls::ComboGetLBText(WindowHandle window, std::uint32_t id,
                                            std::int32_t row) {
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  return list && IsIndex(list->rows, row) ? At(list->rows, row).text : std::string();
}

std::int32_t VirtualControls::ComboFindString(WindowHandle window, std::uint32_t id,
                                              const std::string& text) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list) return kNoRow;
  for (std::int32_t row = 0; row < Count(list->rows); ++row) {
    if (FoldsEqual(list->rows[static_cast<std::size_t>(row)].text.substr(0, text.size()), text)) {
      return row;
    }
  }
  return kNoRow;
}

std::int32_t VirtualControls::ComboFindStringExact(WindowHandle window, std::uint32_t id,
                                                   const std::string& text) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list) return kNoRow;
  for (std::int32_t row = 0; row < Count(list->rows); ++row) {
    if (FoldsEqual(list->rows[static_cast<std::size_t>(row)].text, text)) return row;
  }
  return kNoRow;
}

bool VirtualControls::ComboSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t row) {
  if (journal.Enter("ComboSetCurSel", id, row)) return false;
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list) return false;
  // As the published operation: a row that isn't there leaves none selected.
  list->current = IsIndex(list->rows, row) ? row : kNoRow;
  return list->current == row;
}

std::int32_t VirtualControls::ComboGetCurSel(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  return list ? list->current : kNoRow;
}

bool VirtualControls::ComboSetItemData(WindowHandle window, std::uint32_t id, std::int32_t row,
                                       std::int32_t data) {
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  if (!list || !IsIndex(list->rows, row)) return false;
  At(list->rows, row).data = data;
  return true;
}

std::int32_t VirtualControls::ComboGetItemData(WindowHandle window, std::uint32_t id,
                                               std::int32_t row) {
  VirtualControl* const list = system.Find(window, id, ControlKind::DropList);
  return list && IsIndex(list->rows, row) ? At(list->rows, row).data : -1;
}

// ---- List views

std::int32_t VirtualControls::ListInsertColumn(WindowHandle window, std::uint32_t id,
                                               const std::string& text, std::int32_t width) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list) return -1;
  list->order.push_back(Count(list->columns));
  list->columns.push_back({text, std::max(width, 0)});
  system.MarkForPainting(*list);
  return Count(list->columns) - 1;
}

std::int32_t VirtualControls::ListGetColumnWidth(WindowHandle window, std::uint32_t id,
                                                 std::int32_t column) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  return list && IsIndex(list->columns, column) ? At(list->columns, column).width : -1;
}

bool VirtualControls::ListSetColumnWidth(WindowHandle window, std::uint32_t id, std::int32_t column,
                                         std::int32_t width) {
  if (journal.Enter("ListSetColumnWidth", id, column)) return false;
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list || !IsIndex(list->columns, column)) return false;
  system.SetColumnWidth(*system.Find(window), *list, column, width);
  return true;
}

bool VirtualControls::ListGetColumnOrder(WindowHandle window, std::uint32_t id,
                                         std::vector<std::int32_t>* order) {
  if (journal.Enter("ListGetColumnOrder")) return false;
  const VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list) return false;
  *order = list->order;
  return true;
}

bool VirtualControls::ListSetColumnOrder(WindowHandle window, std::uint32_t id,
                                         const std::vector<std::int32_t>& order) {
  if (journal.Enter("ListSetColumnOrder")) return false;
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list ||
      !std::is_permutation(order.begin(), order.end(), list->order.begin(), list->order.end())) {
    return false;
  }
  list->order = order;
  system.MarkForPainting(*list);
  return true;
}

std::int32_t VirtualControls::ListGetClientWidth(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  return list ? std::max(list->place.Width() - kListFrame - kScrollBar, 0) : -1;
}

std::int32_t VirtualControls::ListInsertItem(WindowHandle window, std::uint32_t id,
                                             std::uint32_t data) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list) return -1;
  list->items.push_back({data, false, {}});
  system.MarkForPainting(*list);
  return Count(list->items) - 1;
}

bool VirtualControls::ListDeleteAllItems(WindowHandle window, std::uint32_t id) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list) return false;
  list->items.clear();
  system.MarkForPainting(*list);
  return true;
}

std::int32_t VirtualControls::ListGetItemCount(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  return list ? Count(list->items) : -1;
}

VirtualControl::Item* VirtualControls::FindItem(WindowHandle window, std::uint32_t id,
                                                std::int32_t row) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  return list && IsIndex(list->items, row) ? &At(list->items, row) : nullptr;
}

bool VirtualControls::ListSetItemText(WindowHandle window, std::uint32_t id, std::int32_t row,
                                      std::int32_t column, const std::string& text) {
  VirtualControl::Item* const item = FindItem(window, id, row);
  if (!item || !IsIndex(system.Find(window, id)->columns, column)) return false;
  if (!IsIndex(item->texts, column)) item->texts.resize(static_cast<std::size_t>(column) + 1);
  At(item->texts, column) = text;
  system.MarkForPainting(*system.Find(window, id));
  return true;
}

std::string VirtualControls::ListGetItemText(WindowHandle window, std::uint32_t id,
                                             std::int32_t row, std::int32_t column) {
  VirtualControl::Item* const item = FindItem(window, id, row);
  return item && IsIndex(item->texts, column) ? At(item->texts, column) : std::string();
}

std::uint32_t VirtualControls::ListGetItemData(WindowHandle window, std::uint32_t id,
                                               std::int32_t row) {
  const VirtualControl::Item* const item = FindItem(window, id, row);
  return item ? item->data : static_cast<std::uint32_t>(-1);
}

bool VirtualControls::ListSelectItem(WindowHandle window, std::uint32_t id, std::int32_t row,
                                     bool selected) {
  VirtualControl::Item* const item = FindItem(window, id, row);
  if (!item) return false;
  VirtualControl* const list = system.Find(window, id);
  if (selected && !(list->style & kStyleMultiSelect)) {
    for (VirtualControl::Item& one : list->items) one.selected = false;
  }
  item->selected = selected;
  system.MarkForPainting(*list);
  return true;
}

std::int32_t VirtualControls::ListGetNextSelected(WindowHandle window, std::uint32_t id,
                                                  std::int32_t after) {
  VirtualControl* const list = system.Find(window, id, ControlKind::ListView);
  if (!list) return kNoRow;
  for (std::int32_t row = std::max(after, -1) + 1; row < Count(list->items); ++row) {
    if (At(list->items, row).selected) return row;
  }
  return kNoRow;
}

bool VirtualControls::ListEnsureVisible(WindowHandle window, std::uint32_t id, std::int32_t row) {
  return FindItem(window, id, row) != nullptr;
}

// ---- Tabs

std::int32_t VirtualControls::TabInsertItem(WindowHandle window, std::uint32_t id,
                                            const std::string& text) {
  VirtualControl* const control = system.Find(window, id, ControlKind::TabControl);
  if (!control) return -1;
  control->tabs.push_back({text, {}, false});
  if (control->current < 0) control->current = 0;
  return Count(control->tabs) - 1;
}

bool VirtualControls::TabGetItemRect(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                     Rect* rect) {
  VirtualControl* const control = system.Find(window, id, ControlKind::TabControl);
  if (!control || !IsIndex(control->tabs, tab)) return false;
  const auto width = [](const VirtualControl::Tab& one) {
    return static_cast<std::int32_t>(6 * one.text.size() + 12);
  };
  std::int32_t left = kTabEdge;
  for (std::int32_t before = 0; before < tab; ++before) left += width(At(control->tabs, before));
  *rect = {left, kTabEdge, left + width(At(control->tabs, tab)), kTabEdge + kTabHeight};
  return true;
}

bool VirtualControls::TabSetCurSel(WindowHandle window, std::uint32_t id, std::int32_t tab) {
  if (journal.Enter("TabSetCurSel", id, tab)) return false;
  VirtualControl* const control = system.Find(window, id, ControlKind::TabControl);
  if (!control || !IsIndex(control->tabs, tab)) return false;
  control->current = tab;
  return true;
}

std::int32_t VirtualControls::TabGetCurSel(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const control = system.Find(window, id, ControlKind::TabControl);
  return control ? control->current : -1;
}

// ---- Sliders

bool VirtualControls::SliderSetRange(WindowHandle window, std::uint32_t id, std::int32_t least,
                                     std::int32_t most) {
  VirtualControl* const slider = system.Find(window, id, ControlKind::Slider);
  if (!slider) return false;
  slider->least = least;
  slider->most = std::max(least, most);
  slider->position = std::clamp(slider->position, slider->least, slider->most);
  return true;
}

bool VirtualControls::SliderSetTicFreq(WindowHandle window, std::uint32_t id, std::int32_t every) {
  VirtualControl* const slider = system.Find(window, id, ControlKind::Slider);
  if (!slider) return false;
  slider->every = every;
  return true;
}

bool VirtualControls::SliderSetPos(WindowHandle window, std::uint32_t id, std::int32_t position) {
  VirtualControl* const slider = system.Find(window, id, ControlKind::Slider);
  if (!slider) return false;
  slider->position = std::clamp(position, slider->least, slider->most);
  return true;
}

std::int32_t VirtualControls::SliderGetPos(WindowHandle window, std::uint32_t id) {
  const VirtualControl* const slider = system.Find(window, id, ControlKind::Slider);
  return slider ? slider->position : -1;
}

// ---- Looks

bool VirtualControls::SetPicture(WindowHandle window, std::uint32_t id, BitmapHandle bitmap) {
  if (journal.Enter("SetPicture", id)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control ||
      (control->kind != ControlKind::Picture && control->kind != ControlKind::PictureButton)) {
    return false;
  }
  control->picture = bitmap;
  return true;
}

bool VirtualControls::SetControlFont(WindowHandle window, std::uint32_t id, const std::string& face,
                                     std::int32_t height, std::int32_t weight, bool underline) {
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  if (!face.empty()) control->face = face;
  if (height != 0) control->height = height;
  if (weight != 0) control->weight = weight;
  control->underline = underline;
  return true;
}

bool VirtualControls::SetTextColour(WindowHandle window, std::uint32_t id, Colour colour) {
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  control->textColour = colour;
  return true;
}

bool VirtualControls::SetBackgroundColour(WindowHandle window, std::uint32_t id, Colour colour) {
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  control->backgroundColour = colour;
  return true;
}

bool VirtualControls::SetHandCursor(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("SetHandCursor")) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!control) return false;
  control->handCursor = true;
  return true;
}

// ---- Tool tips

VirtualWindow* VirtualControls::WindowWithToolTip(WindowHandle window) {
  VirtualWindow* const found = system.Find(window);
  return found && found->hasToolTip ? found : nullptr;
}

VirtualWindow* VirtualControls::WindowWithTips(WindowHandle window) {
  VirtualWindow* const found = system.Find(window);
  return found && (found->hasToolTip || found->toolTipsEnabled) ? found : nullptr;
}

bool VirtualControls::CreateToolTip(WindowHandle window) {
  if (journal.Enter("CreateToolTip")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found || found->hasToolTip) return false;
  found->hasToolTip = true;
  return true;
}

bool VirtualControls::SetToolTipWidth(WindowHandle window, std::int32_t pixels) {
  if (journal.Enter("SetToolTipWidth", pixels)) return false;
  VirtualWindow* const found = WindowWithTips(window);
  if (!found) return false;
  found->toolTipWidth = pixels;
  return true;
}

bool VirtualControls::SetToolTipTime(WindowHandle window, std::int32_t ms) {
  if (journal.Enter("SetToolTipTime", ms)) return false;
  VirtualWindow* const found = WindowWithTips(window);
  if (!found) return false;
  found->toolTipTime = ms;
  return true;
}

bool VirtualControls::ActivateToolTip(WindowHandle window, bool active) {
  if (journal.Enter("ActivateToolTip")) return false;
  VirtualWindow* const found = WindowWithToolTip(window);
  if (!found) return false;
  found->toolTipActive = active;
  return true;
}

bool VirtualControls::AddTabTool(WindowHandle window, std::uint32_t id, std::int32_t tab,
                                 const std::string& text) {
  if (journal.Enter("AddTabTool", id, tab)) return false;
  VirtualControl* const control = system.Find(window, id, ControlKind::TabControl);
  if (!WindowWithToolTip(window) || !control || !IsIndex(control->tabs, tab)) return false;
  At(control->tabs, tab).tip = text;
  At(control->tabs, tab).isTool = true;
  return true;
}

bool VirtualControls::AddTool(WindowHandle window, std::uint32_t id) {
  if (journal.Enter("AddTool", id)) return false;
  VirtualControl* const control = system.Find(window, id);
  if (!WindowWithToolTip(window) || !control) return false;
  control->isTool = true;
  return true;
}

bool VirtualControls::EnableToolTips(WindowHandle window) {
  if (journal.Enter("EnableToolTips")) return false;
  VirtualWindow* const found = system.Find(window);
  if (!found) return false;
  found->toolTipsEnabled = true;
  return true;
}

}  // namespace platform::simulation
