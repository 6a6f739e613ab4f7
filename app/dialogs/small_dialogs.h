// The small dialogs: a question or two, and the answer in a member.
#pragma once

#include "app/layout/dialog.h"
#include "foundation/byte_string.h"

namespace kelvaro {

// "New Profile". Takes any name, an empty one too.
class NewProfileDialog : public Dialog {
 public:
  NewProfileDialog();
  ByteString name;  // after IDOK

 protected:
  void OnOK() override;
};

// "Delete Profile": IDOK for "Yes, Delete It".
class DeleteProfileDialog : public Dialog {
 public:
  explicit DeleteProfileDialog(const ByteString& name);

 protected:
  void OnInit() override;

 private:
  const ByteString name;
};

// Asks for another name of a profile, for a copy or to rename it. Refuses an empty one.
class ProfileNameDialog : public Dialog {
 public:
  // The top line is `firstPart`, a blank and the old name in double quotes.
  ProfileNameDialog(const ByteString& title, const ByteString& firstPart,
                    const ByteString& oldName);
  ByteString name;  // at first the old one; after IDOK the new one

 protected:
  void OnInit() override;
  void OnOK() override;

 private:
  const ByteString title;
  const ByteString firstPart;
  const ByteString oldName;
};

// "Advanced Settings".
class AdvancedSettingsDialog : public Dialog {
 public:
  explicit AdvancedSettingsDialog(bool autodetectDevicePlugin);
  bool autodetectDevicePlugin;  // after IDOK

 protected:
  void OnInit() override;
  void OnOK() override;
  std::string OnToolTip(std::uint32_t id) override;
};

// "Welcome to Kelvaro", of the first start.
class WelcomeDialog : public Dialog {
 public:
  WelcomeDialog();
  static ByteString Text();

 protected:
  void OnInit() override;
};

// A text with the check box "Don't show this again", which counts however the dialog ends.
class ReminderDialog : public Dialog {
 public:
  bool dontShowAgain = false;

 protected:
  ReminderDialog(const platform::DialogTemplate& resource, std::uint32_t checkBox)
      : Dialog(resource), checkBox(checkBox) {}
  void OnOK() override;
  void OnCancel() override;

 private:
  const std::uint32_t checkBox;
};

// "Auto-Detect Mode": how to end a detection.
class AutoDetectModeDialog : public ReminderDialog {
 public:
  AutoDetectModeDialog();
};

// "Shift Key Required": IDOK for "Yes".
class ShiftKeyRequiredDialog : public ReminderDialog {
 public:
  ShiftKeyRequiredDialog();
};

}  // namespace kelvaro
