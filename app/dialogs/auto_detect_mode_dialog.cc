#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

AutoDetectModeDialog::AutoDetectModeDialog() : Dialog(resources::kAutoDetectMode) {}

void AutoDetectModeDialog::OnOK() {
  dontShowAgain = Checked(auto_detect_mode::kDontShowAgain);
  Dialog::OnOK();
}

void AutoDetectModeDialog::OnCancel() {
  dontShowAgain = Checked(auto_detect_mode::kDontShowAgain);
  Dialog::OnCancel();
}

}  // namespace kelvaro
