// A closed list to choose one row of.
#pragma once

#include <QComboBox>

#include "app/platform/drop_rows.h"
#include "app/platform/qt/control.h"

namespace platform::qt {

class DropList final : public Control {
 public:
  DropList(ControlHost& host, const ControlTemplate& from);

  std::int32_t Add(const std::string& row);  // where it is
  bool Delete(std::int32_t row);
  void Reset();
  const DropRows& Rows() const { return rows; }
  bool Select(std::int32_t row);
  bool SetData(std::int32_t row, std::int32_t data) { return rows.SetData(row, data); }

 private:
  class Widget;
  void Sync();

  QComboBox* const box;
  DropRows rows;
};

}  // namespace platform::qt
