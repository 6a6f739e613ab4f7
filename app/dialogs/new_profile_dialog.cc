#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

using namespace new_profile;

NewProfileDialog::NewProfileDialog() : Dialog(resources::kNewProfile) {}

void NewProfileDialog::OnOK() {
  name = Text(kName);
  Dialog::OnOK();
}

}  // namespace kelvaro
