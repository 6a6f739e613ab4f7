// The dialog "Define Control", which makes and edits one Control: `scratch`. The caller fills
// scratch before it opens and takes it back after IDOK. While dialogOpen is set no Control fires;
// each changed state of the device comes to ShowDetectedTrigger instead.
#pragma once

#include <cstdint>

#include "app/layout/resizable_dialog.h"
#include "device/device_manager.h"
#include "engine/control.h"
#include "engine/device_snapshot.h"
#include "foundation/byte_string.h"
#include "foundation/recursive_lock.h"
#include "foundation/relaxed.h"

namespace kelvaro {

class DefineControlDialog : public ResizableDialog {
 public:
  DefineControlDialog();

  // Notification thread. Makes scratch's Trigger of what is held and shows it, if detectTrigger is
  // set and the dialog is still open.
  void ShowDetectedTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot);

  Control scratch;
  bool helpAvailable = false;
  bool smartCheck{};     // set before each opening
  bool shiftReminder{};  // set before, read after each opening
  Relaxed<bool> dialogOpen{false};
  Relaxed<bool> detectTrigger{};  // the check box of that name

 protected:
  void OnInit() override;
  void OnOK() override;
  void OnCancel() override;
  void OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) override;
  std::string OnToolTip(std::uint32_t id) override;
  void OnDestroy() override;

 private:
  void DeclareLayout();
  void TakeScratch();  // into the members below and the controls
  void EnableFields();
  void OnPressOrRelease(bool press);
  void OnRepeatBox();
  void OnHoldAllBox();
  void OnDefaults();
  void OnHelpKey();

  void ShowFields();
  // Reads the controls into the members, up to the first field that holds no number; then false,
  // after a message and with the focus on that field.
  bool ReadFields();
  bool ReadNumber(std::uint32_t id, std::uint32_t* value);

  // Appends the keys of keysText to scratch's actions, nothing for an empty text. False, after a
  // message or a question, when the text is refused.
  bool TakeKeys(bool onPress);
  // keysText, or the token that it stands for, if the user says so.
  ByteString KeysMeant() const;
  bool ConfirmUppercase();
  void ShowKeyError(bool duplicateKey, std::uint32_t offset);

  void SetDialogOpen(bool open);

  ByteString descriptionText;
  ByteString keysText;
  bool repeatCheck{};
  std::uint32_t delayValue{};  // ms, as are the next three
  std::uint32_t speedValue{};
  bool toggleMouseCheck{};
  std::uint32_t holdValue{};
  std::uint32_t pauseValue{};
  ByteString tipText;
  platform::IconHandle icon{};  // while it runs

  // Guards scratch's Trigger while the dialog is open, and the end of that. Inside of deviceLock on
  // the notification thread; nothing is waited for with it.
  RecursiveLock triggerLock;
};

}  // namespace kelvaro
