// Rows of several columns below headers that can be dragged. The texts of the cells are kept as the
// bytes that they were set as.
#pragma once

#include <vector>

#include "app/platform/windows/ui/control.h"

namespace platform::ui {

class ListView final : public Control {
 public:
  ListView(ControlHost& host, const ControlTemplate& from, HWND handle);

  std::int32_t InsertColumn(const std::string& heading, std::int32_t width);
  std::int32_t ColumnWidth(std::int32_t column) const;
  bool SetColumnWidth(std::int32_t column, std::int32_t width);
  std::vector<std::int32_t> Order() const;
  bool SetOrder(const std::vector<std::int32_t>& order);
  std::int32_t ClientWidth() const;
  std::int32_t InsertItem(std::uint32_t data);
  void DeleteAllItems();
  std::int32_t ItemCount() const { return static_cast<std::int32_t>(rows.size()); }
  bool SetItemText(std::int32_t row, std::int32_t column, const std::string& cell);
  std::string ItemText(std::int32_t row, std::int32_t column) const;
  std::uint32_t ItemData(std::int32_t row) const;
  bool SelectItem(std::int32_t row, bool selected);
  std::int32_t NextSelected(std::int32_t after) const;
  bool EnsureVisible(std::int32_t row);

  LRESULT OnNotify(NMHDR& notice) override;

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override;

 private:
  struct Row {
    std::vector<std::string> cells;
    std::uint32_t data = 0;
  };
  bool IsColumn(std::int32_t column) const { return column >= 0 && column < columns; }
  bool Has(std::int32_t row, std::int32_t column) const;
  LRESULT HeaderNotice(WPARAM w, LPARAM l);

  std::int32_t columns = 0;
  std::vector<Row> rows;
};

}  // namespace platform::ui
