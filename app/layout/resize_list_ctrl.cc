#include "app/layout/resize_list_ctrl.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <string>

#include "foundation/registry_key.h"

namespace kelvaro {

namespace {

constexpr std::int64_t kLeastLastWidth = 8;

// While it lives the control's notices about its header are the echo of our own change.
class Hold {
 public:
  explicit Hold(bool* flag) : flag(flag) { *flag = true; }
  ~Hold() { *flag = false; }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  bool* const flag;
};

std::string WidthName(std::uint32_t column) { return "Col " + std::to_string(column) + " Width"; }
std::string OrderName(std::uint32_t column) { return "Col " + std::to_string(column) + " Order"; }

}  // namespace

ResizeListCtrl::ResizeListCtrl(std::uint32_t maxColumns)
    : maxColumns(maxColumns), order(maxColumns), proportion(maxColumns) {
  std::iota(order.begin(), order.end(), 0);
}

void ResizeListCtrl::Attach(platform::WindowHandle newWindow, std::uint32_t newId) {
  window = newWindow;
  id = newId;
  clientWidth = platform::controls().ListGetClientWidth(window, id);
}

bool ResizeListCtrl::AddColumn(const ByteString& text, std::int32_t width) {
  if (columnCount >= maxColumns) return false;
  if (platform::controls().ListInsertColumn(window, id, Bytes(text), width) < 0) return false;
  ++columnCount;
  return true;
}

void ResizeListCtrl::LoadColumns() {
  if (!Usable() || registryKey.IsEmpty()) return;
  loaded = true;
  {
    const Hold hold(&inResize);
    RegistryKey key(platform::HKEY_CURRENT_USER, registryKey, false);
    bool allFound = true;
    for (std::uint32_t i = 0; i < columnCount; ++i) {
      std::uint32_t number{};
      if (key.GetDword(nullptr, WidthName(i).c_str(), &number)) {
        platform::controls().ListSetColumnWidth(window, id, Column(i),
                                                static_cast<std::int32_t>(number));
      } else {
        allFound = false;
      }
      if (key.GetDword(nullptr, OrderName(i).c_str(), &number)) {
        order[i] = static_cast<std::int32_t>(number);
      } else {
        allFound = false;
      }
    }
    if (allFound) {
      platform::controls().ListSetColumnOrder(window, id,
                                              {order.begin(), order.begin() + Column(columnCount)});
    }
    orderKnown = false;  // not for certain what was read
    FixLastColumn();
    ComputeProportions();
  }
  if (redrawOnLoad) platform::controls().InvalidateControl(window, id);
}

void ResizeListCtrl::SaveColumns() {
  if (!Usable() || registryKey.IsEmpty()) return;
  const RegistryWrites together;
  RegistryKey key(platform::HKEY_CURRENT_USER, registryKey, true);
  for (std::uint32_t i = 0; i < columnCount; ++i) {
    key.SetDword(nullptr, WidthName(i).c_str(), static_cast<std::uint32_t>(Width(Column(i))));
  }
  if (!orderKnown && !ReadOrder()) return;
  for (std::uint32_t i = 0; i < columnCount; ++i) {
    key.SetDword(nullptr, OrderName(i).c_str(), static_cast<std::uint32_t>(order[i]));
  }
}

void ResizeListCtrl::ChangeWidth(std::int32_t difference) {
  if (difference == 0 || !Usable()) return;
  clientWidth += difference;
  const Hold hold(&inResize);
  std::int32_t rest = clientWidth;
  for (std::uint32_t i = 0; i + 1 < columnCount; ++i) {
    const auto width = static_cast<std::int32_t>(clientWidth * proportion[i]);
    platform::controls().ListSetColumnWidth(window, id, Column(i), width);
    rest -= width;
  }
  platform::controls().ListSetColumnWidth(window, id, Column(columnCount - 1), rest);
}

bool ResizeListCtrl::OnNotice(platform::Notice notice, std::int32_t value) {
  const bool ours = !firstPaintPending && !inResize && Usable();
  switch (notice) {
    case platform::Notice::HeaderItemChanging:
      if (ours) {
        const Hold hold(&inResize);
        FixLastColumn();
        ComputeProportions();
      }
      return true;
    case platform::Notice::HeaderItemChanged:
      if (ours) {
        const Hold hold(&inResize);
        FixLastColumn();
      }
      return true;
    case platform::Notice::HeaderDragEnded:
      platform::controls().PostControlMessage(window, id, kReadOrderMessage);
      return true;
    case platform::Notice::Painted:
      if (firstPaintPending) {
        firstPaintPending = false;
        if (!loaded) {
          redrawOnLoad = true;
          platform::controls().PostControlMessage(window, id, kLoadMessage);
        }
      }
      return true;
    case platform::Notice::ControlMessage:
      if (static_cast<std::uint32_t>(value) == kReadOrderMessage) {
        ReadOrder();
        return true;
      }
      if (static_cast<std::uint32_t>(value) == kLoadMessage) {
        LoadColumns();
        return true;
      }
      return false;
    default:
      return false;
  }
}

void ResizeListCtrl::FixLastColumn() {
  if (!orderKnown) ReadOrder();
  const std::int32_t last = order[columnCount - 1];
  std::int64_t sum = 0;
  std::int64_t others = 0;
  for (std::uint32_t i = 0; i < columnCount; ++i) {
    const std::int32_t width = Width(Column(i));
    sum += width;
    if (Column(i) != last) others += width;
  }
  if (sum == clientWidth) return;
  platform::controls().ListSetColumnWidth(
      window, id, last, static_cast<std::int32_t>(std::max(clientWidth - others, kLeastLastWidth)));
}

void ResizeListCtrl::ComputeProportions() {
  double sum = 0;
  for (std::uint32_t i = 0; i < columnCount; ++i) sum += Width(Column(i));
  if (sum == 0) sum = 1.0;
  std::int32_t column = 0;
  for (double& each : std::span(proportion).first(columnCount)) each = Width(column++) / sum;
}

bool ResizeListCtrl::ReadOrder() {
  std::vector<std::int32_t> present;
  platform::controls().ListGetColumnOrder(window, id, &present);
  if (present.size() != columnCount) return false;  // or it can't be read
  std::copy(present.begin(), present.end(), order.begin());
  orderKnown = true;
  return true;
}

bool ResizeListCtrl::Usable() const { return window != platform::kNoWindow && columnCount > 0; }

std::int32_t ResizeListCtrl::Width(std::int32_t column) const {
  return platform::controls().ListGetColumnWidth(window, id, column);
}

}  // namespace kelvaro
