#include "app/platform/windows/ui/drop_list.h"

#include <utility>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {
namespace {

constexpr int kRowsInView = 20;

bool IsHeading(const std::string& row) { return row.starts_with("== ") && row.ends_with(" =="); }

int LineHeight(HWND window) {
  TEXTMETRICW metrics = {};
  const HDC canvas = GetDC(window);
  const HGDIOBJ before = SelectObject(canvas, reinterpret_cast<HFONT>(Ask(window, WM_GETFONT)));
  GetTextMetricsW(canvas, &metrics);
  SelectObject(canvas, before);
  ReleaseDC(window, canvas);
  return static_cast<int>(metrics.tmHeight);
}

}  // namespace

DropList::DropList(ControlHost& host, const ControlTemplate& from, HWND handle)
    : Control(host, from, handle), rows((from.style & kStyleSorted) != 0) {
  Ask(handle, CB_SETMINVISIBLE, kRowsInView);
  // Where it is drawn here the system has measured the rows before it knew the font.
  if (GetWindowLongW(handle, GWL_STYLE) & CBS_OWNERDRAWFIXED) {
    const int height = LineHeight(handle);
    for (const int part : {-1, 0}) Ask(handle, CB_SETITEMHEIGHT, part, height);
  }
  for (const char* row : from.rows) Add(row);
  templateRows = rows.Count();
}

DropList::~DropList() {
  if (bold) DeleteObject(bold);
}

std::int32_t DropList::Add(const std::string& row) {
  const std::int32_t index = rows.Add(row);
  const std::wstring wide = Wide(row);
  Ask(handle, CB_INSERTSTRING, index, wide.c_str());
  Sync();
  return index;
}

bool DropList::Delete(std::int32_t row) {
  if (!rows.Delete(row)) return false;
  Ask(handle, CB_DELETESTRING, row);
  Sync();
  return true;
}

void DropList::Reset() {
  rows.Clear();
  Ask(handle, CB_RESETCONTENT);
}

bool DropList::Select(std::int32_t row) {
  rows.Select(row);
  Sync();
  return rows.Selected() == row;
}

void DropList::Sync() {
  if (Ask(handle, CB_GETCURSEL) != rows.Selected()) Ask(handle, CB_SETCURSEL, rows.Selected());
}

// Unfolded, the list only shows what the arrow keys go over: it is chosen when the list closes.
// Then also the row that was chosen before, since what was done with it may have failed.
void DropList::OnCommand(int code) {
  if (code == CBN_DROPDOWN) unfolded = true;
  if (code == CBN_SELENDOK && unfolded) Choose(true);
  if (code == CBN_SELENDCANCEL) Sync();
  if (code == CBN_CLOSEUP) unfolded = false;
  if (code == CBN_SELCHANGE && !unfolded) Choose(false);
}

// Told in its turn: the system sets the row before or after its codes.
void DropList::Choose(bool again) {
  if (!chosen) host.PostInTurn(id);
  chosen = true;
  evenAgain = evenAgain || again;
}

void DropList::InTurn() {
  if (!std::exchange(chosen, false)) return;
  const bool again = std::exchange(evenAgain, false);
  const auto row = static_cast<std::int32_t>(Ask(handle, CB_GETCURSEL));
  if (row < 0 || (row == rows.Selected() && !again)) return;
  rows.Select(row);
  host.Notify(id, Notice::SelectionChanged, row);
}

// Only where the template has headings.
void DropList::OnDrawItem(const DRAWITEMSTRUCT& item) {
  const bool selected = item.itemState & ODS_SELECTED;
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const auto row = static_cast<std::int32_t>(item.itemID);
  const auto usual = reinterpret_cast<HFONT>(Ask(handle, WM_GETFONT));
  const std::string bytes = rows.Text(row);
  HFONT font = usual;
  if (row >= 0 && row < templateRows && IsHeading(bytes)) {
    if (!bold) {
      LOGFONTW wanted = {};
      GetObjectW(usual, sizeof wanted, &wanted);
      wanted.lfWeight = FW_BOLD;
      bold = CreateFontIndirectW(&wanted);
    }
    font = bold;
  }
  const HGDIOBJ before = SelectObject(item.hDC, font);
  SetBkMode(item.hDC, TRANSPARENT);
  const int ink = item.itemState & ODS_DISABLED ? COLOR_GRAYTEXT
                  : selected                    ? COLOR_HIGHLIGHTTEXT
                                                : COLOR_WINDOWTEXT;
  SetTextColor(item.hDC, GetSysColor(ink));
  RECT place = item.rcItem;
  place.left += 2;
  const std::wstring wide = Wide(bytes);
  DrawTextW(item.hDC, wide.c_str(), static_cast<int>(wide.size()), &place,
            DT_SINGLELINE | DT_NOPREFIX | DT_VCENTER | DT_LEFT);
  SelectObject(item.hDC, before);
  if (item.itemState & ODS_FOCUS && !(item.itemState & ODS_NOFOCUSRECT))
    DrawFocusRect(item.hDC, &item.rcItem);
}

// The wheel over a page passes a list that doesn't have the focus.
LRESULT DropList::Message(UINT message, WPARAM w, LPARAM l) {
  if (message == WM_MOUSEWHEEL && GetFocus() != handle) return 0;
  return Inherited(message, w, l);
}

}  // namespace platform::ui
