#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

AutoDetectModeDialog::AutoDetectModeDialog() : Dialog(resources::kAutoDetectMode) {}

void AutoDetectModeDialog::OnOK() {
  dontShowAgain = Checked(resources::kDontShowAgain);
  Dialog::OnOK();
}

void AutoDetectModeDialog::OnCancel() {
  dontShowAgain = Checked(resources::kDontShowAgain);
  Dialog::OnCancel();
}

}  // namespace kelvaro
