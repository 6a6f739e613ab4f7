// A closed list to choose one row of.
#pragma once

#include <QComboBox>
#include <vector>

#include "app/platform/qt/control.h"

namespace platform::qt {

class DropList final : public Control {
 public:
  DropList(ControlHost& host, const ControlTemplate& from);

  std::int32_t Add(const std::string& row);  // where it is
  bool Delete(std::int32_t row);
  void Reset();
  std::int32_t Count() const { return static_cast<std::int32_t>(rows.size()); }
  std::string RowText(std::int32_t row) const;
  std::int32_t FindPrefix(const std::string& prefix) const;
  std::int32_t FindExact(const std::string& wanted) const;
  // Of a row that isn't there, as of -1, none is selected.
  bool Select(std::int32_t row);
  std::int32_t Selected() const { return selected; }
  bool SetData(std::int32_t row, std::int32_t data);
  std::int32_t Data(std::int32_t row) const;

 private:
  class Widget;
  struct Row {
    std::string text;
    std::int32_t data = 0;
  };
  bool IsRow(std::int32_t row) const { return row >= 0 && row < Count(); }
  void Sync();

  QComboBox* const box;
  std::vector<Row> rows;
  std::int32_t selected = kNoRow;
};

}  // namespace platform::qt
