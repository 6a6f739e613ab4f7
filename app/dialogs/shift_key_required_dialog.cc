#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

ShiftKeyRequiredDialog::ShiftKeyRequiredDialog() : Dialog(resources::kShiftKeyRequired) {}

void ShiftKeyRequiredDialog::OnOK() {
  dontShowAgain = Checked(resources::kDontShowAgain);
  Dialog::OnOK();
}

void ShiftKeyRequiredDialog::OnCancel() {
  dontShowAgain = Checked(resources::kDontShowAgain);
  Dialog::OnCancel();
}

}  // namespace kelvaro
