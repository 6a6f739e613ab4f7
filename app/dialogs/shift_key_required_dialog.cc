#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

ShiftKeyRequiredDialog::ShiftKeyRequiredDialog() : Dialog(resources::kShiftKeyRequired) {}

void ShiftKeyRequiredDialog::OnOK() {
  dontShowAgain = Checked(shift_key_required::kDontShowAgain);
  Dialog::OnOK();
}

void ShiftKeyRequiredDialog::OnCancel() {
  dontShowAgain = Checked(shift_key_required::kDontShowAgain);
  Dialog::OnCancel();
}

}  // namespace kelvaro
