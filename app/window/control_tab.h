// The Control tab: each operation changes the profile's Controls, saves the profile at once,
// whether or not that succeeds, and brings what the dispatcher walks up to date. Only the user
// interface's thread changes `controls`, so it reads them without the lock.
#pragma once

#include <cstdint>

#include "app/dialogs/define_control_dialog.h"
#include "app/layout/resize_list_ctrl.h"
#include "app/window/session.h"

namespace kelvaro {

class ControlTab : public Pane {
 public:
  explicit ControlTab(Session& session) : Pane(session) {}

  void PrepareList();  // its columns, as they were left
  void FillControlList();

  // The first selected row and the Control of it; kNoRow and 0 for none.
  std::int32_t SelectedRow() const;
  std::uint32_t SelectedControlId() const;

  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;

  DefineControlDialog defineControl;
  ResizeListCtrl controlList{50};
  LinkedList<Control> copiedControls;  // of Copy, for Paste
  std::uint8_t rowPrefixes = 0;        // 1: rows tell press from release

 private:
  void FillControlRow(std::int32_t row, const Control& control);
  void SelectedRows(LinkedList<std::int32_t>* rows) const;
  void SelectedControlIds(LinkedList<std::uint32_t>* ids) const;
  Control* FindSelectedControl();
  Control* FindControl(std::uint32_t controlId);
  bool RunDefineControlDialog();  // of defineControl.scratch; whether it ended with OK
  void BringShiftReminderBack();
  // With no Control repeating.
  void RebuildDispatchList() KELVARO_NEEDS(profile.profileLock);
  void OnNewControl();
  void OnEditControl();
  void OnDeleteControls();
  void OnCopyControls();
  void OnPasteControls();
  void OnMoveUp();
  void OnMoveDown();
  void OnControlListKey(std::int32_t vk);
};

}  // namespace kelvaro
