// Rows of several columns below headers that can be dragged. Whole rows are selected, and lines
// stand between the cells.
#pragma once

#include <QAbstractTableModel>
#include <QTreeView>
#include <string>
#include <vector>

#include "app/platform/qt/control.h"

namespace platform::qt {

class ListView final : public Control {
 public:
  ListView(ControlHost& host, const ControlTemplate& from);

  std::int32_t InsertColumn(const std::string& heading, std::int32_t width);
  std::int32_t ColumnWidth(std::int32_t column) const;
  bool SetColumnWidth(std::int32_t column, std::int32_t width);
  const std::vector<std::int32_t>& Order() const { return order; }
  bool SetOrder(const std::vector<std::int32_t>& wanted);
  std::int32_t ClientWidth() const;

  std::int32_t InsertItem(std::uint32_t data);
  void DeleteAllItems();
  std::int32_t ItemCount() const;
  bool SetItemText(std::int32_t row, std::int32_t column, const std::string& cell);
  std::string ItemText(std::int32_t row, std::int32_t column) const;
  std::uint32_t ItemData(std::int32_t row) const;
  bool SelectItem(std::int32_t row, bool selected);
  std::int32_t NextSelected(std::int32_t after) const;
  bool EnsureVisible(std::int32_t row);

  // The whole text of the cell at a point of the list where it is cut off, and the place of what is
  // seen of it, in the list; empty where nothing is cut.
  QString CutText(const QPoint& at, QRect* place) const;

 private:
  class Rows;
  class Widget;
  bool IsColumn(std::int32_t column) const;
  void WidthChanged(int column, int before, int now);
  void ColumnMoved();

  Rows* const rows;  // of the widget
  Widget* const list;
  // What the program is told: what the headers have, except while a notice about it runs.
  std::vector<std::int32_t> widths;
  std::vector<std::int32_t> order;
  bool settingOrder = false;
};

}  // namespace platform::qt
