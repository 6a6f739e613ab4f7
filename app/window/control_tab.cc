#include "app/window/control_tab.h"

#include "app/resources/control_ids.h"
#include "app/resources/settings_keys.h"
#include "engine/input_text.h"
#include "keys/key_action.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::int32_t kTriggerColumn = 0;
constexpr std::int32_t kActionColumn = 1;
constexpr std::int32_t kDescriptionColumn = 2;

constexpr std::uint8_t kControlKey = 0x11;
constexpr std::int32_t kDeleteKey = 0x2E;
constexpr std::uint16_t kKeyIsDown = 0x8000;

constexpr char kNoProfileText[] = "Create or Load a Profile Before Creating Controls";
constexpr char kNoProfileTitle[] = "No Profile Selected";
constexpr char kDeleteText[] = "Delete Selected Control(s), Are You Sure?";
constexpr char kDeleteTitle[] = "Confirm Delete";

ByteString ActionText(const Control& control) {
  ByteString text;
  if (control.toggleMouseControls == 1) text = "<mouse ctrl>";
  for (const InputAction* action : control.actions) {
    if (action->actionType != InputAction::kKeyAction) continue;
    if (!text.IsEmpty()) text.AppendChar('+');
    text.Append(static_cast<const KeyAction&>(*action).FormatKeys());
  }
  return text;
}

}  // namespace

void ControlTab::PrepareList() {
  controlList.Attach(dialog.window, kControlList);
  controlList.AddColumn("Trigger", 100);
  controlList.AddColumn("Action", 50);
  controlList.AddColumn("Description", 150);
  controlList.registryKey = ByteString(kProductKey).Concat("\\").Concat(kMainWindowSubkey);
  controlList.LoadColumns();
}

void ControlTab::FillControlList() {
  platform::controls().ListDeleteAllItems(dialog.window, kControlList);
  const LinkedList<Control>::Node* node = nullptr;
  {
    LockGuard guard(profile.profileLock);
    node = profile.controls.head;
  }
  for (; node; node = node->next) {
    FillControlRow(
        platform::controls().ListInsertItem(dialog.window, kControlList, node->value->controlId),
        *node->value);
  }
  dialog.Check(kMouseAlwaysActive, profile.mouseAlwaysActive);
}

void ControlTab::FillControlRow(std::int32_t row, const Control& control) {
  ByteString trigger;
  TriggerText(control, &trigger);
  if (rowPrefixes == 1) {
    trigger = ByteString(control.activateOnPress == 1 ? "p:" : "r:").Concat(trigger);
  }
  platform::controls().ListSetItemText(dialog.window, kControlList, row, kTriggerColumn,
                                       Bytes(trigger));
  platform::controls().ListSetItemText(dialog.window, kControlList, row, kActionColumn,
                                       Bytes(ActionText(control)));
  platform::controls().ListSetItemText(dialog.window, kControlList, row, kDescriptionColumn,
                                       Bytes(control.description));
}

std::uint32_t ControlTab::SelectedControlId() const {
  const std::int32_t row = SelectedRow();
  return row == platform::kNoRow
             ? 0
             : platform::controls().ListGetItemData(dialog.window, kControlList, row);
}

std::int32_t ControlTab::SelectedRow() const {
  return platform::controls().ListGetNextSelected(dialog.window, kControlList, platform::kNoRow);
}

void ControlTab::SelectedRows(LinkedList<std::int32_t>* rows) const {
  for (std::int32_t row = SelectedRow(); row != platform::kNoRow;
       row = platform::controls().ListGetNextSelected(dialog.window, kControlList, row)) {
    rows->AddTail(row);
  }
}

void ControlTab::SelectedControlIds(LinkedList<std::uint32_t>* ids) const {
  for (std::int32_t row = SelectedRow(); row != platform::kNoRow;
       row = platform::controls().ListGetNextSelected(dialog.window, kControlList, row)) {
    ids->AddTail(platform::controls().ListGetItemData(dialog.window, kControlList, row));
  }
}

Control* ControlTab::FindSelectedControl() {
  return SelectedRow() == platform::kNoRow ? nullptr : FindControl(SelectedControlId());
}

Control* ControlTab::FindControl(std::uint32_t controlId) {
  for (Control& control : profile.controls) {
    if (control.controlId == controlId) return &control;
  }
  return nullptr;
}

bool ControlTab::RunDefineControlDialog() {
  engine->repeatWorker.Clear();
  defineControl.smartCheck = session.settings.smartCheck;
  defineControl.shiftReminder = session.settings.shiftReminder;
  const bool accepted = defineControl.DoModal(dialog.window) == platform::IDOK;
  // While the dialog was open the pointer stood still. The program may have ended meanwhile.
  if (!session.shuttingDown) engine->MouseChanged();
  return accepted;
}

void ControlTab::BringShiftReminderBack() {
  if (session.settings.shiftReminder == defineControl.shiftReminder) return;
  session.settings.shiftReminder = defineControl.shiftReminder;
  session.SaveAppSettings();
}

void ControlTab::OnNewControl() {
  if (profile.profileName.IsEmpty()) {
    dialog.Box(kNoProfileText, kNoProfileTitle, platform::MB_OK);
    return;
  }
  Control& scratch = defineControl.scratch;
  scratch.Reset();
  if (RunDefineControlDialog()) {
    LockGuard guard(profile.profileLock);
    scratch.controlId = profile.nextControlId++;
    profile.controls.AddTail(scratch);
    session.SaveProfile();
    const std::int32_t row =
        platform::controls().ListInsertItem(dialog.window, kControlList, scratch.controlId);
    FillControlRow(row, scratch);
    platform::controls().ListEnsureVisible(dialog.window, kControlList, row);
    RebuildDispatchList();
  }
  BringShiftReminderBack();
}

void ControlTab::OnEditControl() {
  // Enter on any tab presses the default button, which is this one.
  if (session.currentTab != Session::kControlTab) return;
  Control& scratch = defineControl.scratch;
  {
    LockGuard guard(profile.profileLock);
    const Control* control = FindSelectedControl();
    if (!control) return;
    scratch.Borrow(*control);
  }
  if (RunDefineControlDialog()) {
    LockGuard guard(profile.profileLock);
    // Its keys may be down, or it may have begun to repeat, since just before the dialog was open.
    engine->LetGoOfControls();
    // Another look, since the lock was free meanwhile.
    if (Control* control = FindSelectedControl()) {
      control->CopyShared(scratch);
      FillControlRow(SelectedRow(), *control);
      session.SaveProfile();
    }
    RebuildDispatchList();
  }
  BringShiftReminderBack();
}

void ControlTab::OnDeleteControls() {
  if (profile.controls.count == 0 || SelectedRow() == platform::kNoRow) return;
  if (dialog.Box(kDeleteText, kDeleteTitle, platform::MB_YESNO | platform::MB_ICONQUESTION) !=
      platform::IDYES) {
    return;
  }
  LinkedList<std::uint32_t> ids;
  SelectedControlIds(&ids);
  {
    LockGuard guard(profile.profileLock);
    // Before the actions go, which may be replayed or hold their keys.
    engine->LetGoOfControls();
    for (const std::uint32_t id : ids) {
      for (auto* node = profile.controls.head; node;) {
        auto* const next = node->next;
        if (node->value->controlId == id) profile.controls.RemoveNode(node);
        node = next;
      }
    }
    RebuildDispatchList();
    session.SaveProfile();
  }
  FillControlList();
}

void ControlTab::OnCopyControls() {
  LinkedList<std::uint32_t> ids;
  SelectedControlIds(&ids);
  if (ids.count == 0) return;
  copiedControls.Clear();
  for (const std::uint32_t id : ids) {
    const Control* control = FindControl(id);
    if (control && copiedControls.AddTail({})) copiedControls.tail->value->CopyDeep(*control);
  }
}

void ControlTab::OnPasteControls() {
  if (copiedControls.count == 0) return;
  {
    LockGuard guard(profile.profileLock);
    for (const Control& control : copiedControls) {
      if (!profile.controls.AddTail({})) continue;
      Control& pasted = *profile.controls.tail->value;
      pasted.CopyDeep(control);
      pasted.controlId = profile.nextControlId++;
    }
    RebuildDispatchList();
    session.SaveProfile();
  }
  FillControlList();
  platform::controls().ListEnsureVisible(dialog.window, kControlList, profile.controls.count - 1);
}

void ControlTab::OnMoveUp() {
  LinkedList<std::int32_t> rows;
  SelectedRows(&rows);
  if (rows.count == 0 || *rows.head->value == 0) return;
  {
    LockGuard guard(profile.profileLock);
    for (const std::int32_t row : rows) profile.controls.MoveUp(row);
    session.SaveProfile();
  }
  FillControlList();
  for (const std::int32_t row : rows) {
    platform::controls().ListSelectItem(dialog.window, kControlList, row - 1, true);
  }
}

void ControlTab::OnMoveDown() {
  LinkedList<std::int32_t> rows;
  SelectedRows(&rows);
  const std::int32_t last = platform::controls().ListGetItemCount(dialog.window, kControlList) - 1;
  if (rows.count == 0 || *rows.tail->value == last) return;
  {
    LockGuard guard(profile.profileLock);
    for (const auto* row = rows.tail; row; row = row->prev) profile.controls.MoveDown(*row->value);
    session.SaveProfile();
  }
  FillControlList();
  for (const std::int32_t row : rows) {
    platform::controls().ListSelectItem(dialog.window, kControlList, row + 1, true);
  }
}

// Enter in the list isn't among them: it presses the default button, which the table of the window
// (resources/main_window.cc, kStyleDefault) makes the one that edits a Control.
void ControlTab::OnControlListKey(std::int32_t vk) {
  const bool control = (platform::desktop().GetKeyState(kControlKey) & kKeyIsDown) != 0;
  if (vk == kDeleteKey) {
    OnDeleteControls();
  } else if (control && vk == 'C') {
    OnCopyControls();
  } else if (control && vk == 'V') {
    OnPasteControls();
  }
}

void ControlTab::RebuildDispatchList() {
  engine->LetGoOfControls();
  profile.RebuildDispatchList();
}

void ControlTab::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) {
  using platform::Notice;
  if (id == kControlList) controlList.OnNotice(notice, value);
  // Of the keys that the list takes, the window itself takes these two.
  const bool isOfTheWindow = id == 0 && (value == 'C' || value == 'V');
  if (notice == Notice::KeyDown && (id == kControlList || isOfTheWindow)) OnControlListKey(value);
  static constexpr Handler<ControlTab> kHandlers[] = {
      {kControlList, Notice::DoubleClicked, &ControlTab::OnEditControl},
      {kNewControl, Notice::Clicked, &ControlTab::OnNewControl},
      {kEditControl, Notice::Clicked, &ControlTab::OnEditControl},
      {kDeleteControls, Notice::Clicked, &ControlTab::OnDeleteControls},
      {kCopyControls, Notice::Clicked, &ControlTab::OnCopyControls},
      {kPasteControls, Notice::Clicked, &ControlTab::OnPasteControls},
      {kMoveUp, Notice::Clicked, &ControlTab::OnMoveUp},
      {kMoveDown, Notice::Clicked, &ControlTab::OnMoveDown},
  };
  Handle(this, kHandlers, id, notice);
}

}  // namespace kelvaro
