// A closed list to choose one row of.
#pragma once

#include "app/platform/drop_rows.h"
#include "app/platform/windows/ui/control.h"

namespace platform::ui {

class DropList final : public Control {
 public:
  DropList(ControlHost& host, const ControlTemplate& from, HWND handle);
  ~DropList() override;

  std::int32_t Add(const std::string& row);  // where it is
  bool Delete(std::int32_t row);
  void Reset();
  const DropRows& Rows() const { return rows; }
  bool Select(std::int32_t row);
  bool SetData(std::int32_t row, std::int32_t data) { return rows.SetData(row, data); }

  void OnCommand(int code) override;
  void OnDrawItem(const DRAWITEMSTRUCT& item) override;
  void InTurn() override;

 protected:
  LRESULT Message(UINT message, WPARAM w, LPARAM l) override;

 private:
  void Sync();
  void Choose(bool again);

  DropRows rows;
  std::int32_t templateRows = 0;  // those that the template brings, where a heading is one
  bool unfolded = false;
  bool chosen = false;     // by the person, and yet to be told
  bool evenAgain = false;  // also where it is the row that was chosen before
  HFONT bold = nullptr;
};

}  // namespace platform::ui
