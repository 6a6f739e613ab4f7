#include "app/platform/windows/ui/list_view.h"

#include <algorithm>

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

ListView::ListView(ControlHost& host, const ControlTemplate& from, HWND handle)
    : Control(host, from, handle) {
  const DWORD extended = LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP |
                         LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER;
  Ask(handle, LVM_SETEXTENDEDLISTVIEWSTYLE, extended, extended);
}

bool ListView::Has(std::int32_t row, std::int32_t column) const {
  return row >= 0 && row < ItemCount() && IsColumn(column);
}

std::int32_t ListView::InsertColumn(const std::string& heading, std::int32_t width) {
  std::wstring wide = Wide(heading);
  LVCOLUMNW column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM | LVCF_FMT;
  column.fmt = LVCFMT_LEFT;
  column.cx = std::max(0, width);
  column.pszText = wide.data();
  column.iSubItem = columns;
  if (Ask(handle, LVM_INSERTCOLUMNW, columns, &column) < 0) return -1;
  for (Row& row : rows) row.cells.emplace_back();
  return columns++;
}

std::int32_t ListView::ColumnWidth(std::int32_t column) const {
  return IsColumn(column) ? static_cast<std::int32_t>(Ask(handle, LVM_GETCOLUMNWIDTH, column)) : -1;
}

bool ListView::SetColumnWidth(std::int32_t column, std::int32_t width) {
  if (!IsColumn(column) || width < 0) return false;
  if (ColumnWidth(column) == width) return true;
  return Ask(handle, LVM_SETCOLUMNWIDTH, column, width) != 0;
}

std::vector<std::int32_t> ListView::Order() const {
  std::vector<int> order(static_cast<std::size_t>(columns));
  Ask(handle, LVM_GETCOLUMNORDERARRAY, columns, order.data());
  return {order.begin(), order.end()};
}

bool ListView::SetOrder(const std::vector<std::int32_t>& wanted) {
  std::vector<int> sorted(wanted.begin(), wanted.end());
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (sorted[i] != static_cast<int>(i)) return false;
  }
  if (static_cast<std::int32_t>(wanted.size()) != columns) return false;
  std::vector<int> order(wanted.begin(), wanted.end());
  Ask(handle, LVM_SETCOLUMNORDERARRAY, columns, order.data());
  Redraw();
  return true;
}

std::int32_t ListView::ClientWidth() const {
  const std::int32_t frame = 2 * GetSystemMetrics(SM_CXEDGE);
  return std::max(0, Place().Width() - frame - GetSystemMetrics(SM_CXVSCROLL));
}

std::int32_t ListView::InsertItem(std::uint32_t data) {
  wchar_t none[] = L"";
  LVITEMW item = {};
  item.mask = LVIF_TEXT;
  item.iItem = ItemCount();
  item.pszText = none;
  if (Ask(handle, LVM_INSERTITEMW, 0, &item) < 0) return kNoRow;
  rows.push_back({std::vector<std::string>(static_cast<std::size_t>(columns)), data});
  return ItemCount() - 1;
}

void ListView::DeleteAllItems() {
  rows.clear();
  Ask(handle, LVM_DELETEALLITEMS);
}

bool ListView::SetItemText(std::int32_t row, std::int32_t column, const std::string& cell) {
  if (!Has(row, column)) return false;
  rows[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(column)] = cell;
  std::wstring wide = Wide(cell);
  LVITEMW item = {};
  item.iSubItem = column;
  item.pszText = wide.data();
  return Ask(handle, LVM_SETITEMTEXTW, row, &item) != 0;
}

std::string ListView::ItemText(std::int32_t row, std::int32_t column) const {
  if (!Has(row, column)) return {};
  return rows[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(column)];
}

std::uint32_t ListView::ItemData(std::int32_t row) const {
  return row >= 0 && row < ItemCount() ? rows[static_cast<std::size_t>(row)].data : 0;
}

bool ListView::SelectItem(std::int32_t row, bool selected) {
  if (row < 0 || row >= ItemCount()) return false;
  LVITEMW item = {};
  // Where the arrow keys go on.
  item.stateMask = LVIS_SELECTED | (selected ? LVIS_FOCUSED : 0u);
  item.state = selected ? LVIS_SELECTED | LVIS_FOCUSED : 0u;
  Ask(handle, LVM_SETITEMSTATE, row, &item);
  if (selected) Ask(handle, LVM_SETSELECTIONMARK, 0, row);
  return true;
}

std::int32_t ListView::NextSelected(std::int32_t after) const {
  return static_cast<std::int32_t>(
      Ask(handle, LVM_GETNEXTITEM, std::max(after, -1), MAKELPARAM(LVNI_SELECTED, 0)));
}

bool ListView::EnsureVisible(std::int32_t row) {
  if (row < 0 || row >= ItemCount()) return false;
  Ask(handle, LVM_ENSUREVISIBLE, row, FALSE);
  return true;
}

LRESULT ListView::OnNotify(NMHDR& notice) {
  if (notice.code == NM_DBLCLK)
    host.Notify(id, Notice::DoubleClicked, reinterpret_cast<NMITEMACTIVATE&>(notice).iItem);
  return 0;
}

LRESULT ListView::Message(UINT message, WPARAM w, LPARAM l) {
  if (message == WM_NOTIFY) return HeaderNotice(w, l);
  const LRESULT result = Inherited(message, w, l);
  if (message == WM_PAINT) host.Notify(id, Notice::Painted);
  return result;
}

// Its headers tell the list alone.
LRESULT ListView::HeaderNotice(WPARAM w, LPARAM l) {
  const auto& notice = *reinterpret_cast<const NMHEADERW*>(l);
  const UINT code = notice.hdr.code;
  const bool changing = code == HDN_ITEMCHANGINGA || code == HDN_ITEMCHANGINGW;
  const bool changed = code == HDN_ITEMCHANGEDA || code == HDN_ITEMCHANGEDW;
  const bool width = (changing || changed) && notice.pitem && (notice.pitem->mask & HDI_WIDTH) != 0;
  if (changing && width && notice.pitem->cxy != ColumnWidth(notice.iItem))
    host.Notify(id, Notice::HeaderItemChanging, notice.iItem);
  const LRESULT result = Inherited(WM_NOTIFY, w, l);
  if (changed && width) host.Notify(id, Notice::HeaderItemChanged, notice.iItem);
  if (code == HDN_ENDDRAG) host.Notify(id, Notice::HeaderDragEnded);
  return result;
}

}  // namespace platform::ui
