#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

using namespace delete_profile;

DeleteProfileDialog::DeleteProfileDialog(const ByteString& name)
    : Dialog(resources::kDeleteProfile), name(name) {}

void DeleteProfileDialog::OnInit() {
  SetText(kName, ByteString("\"").Concat(name).Concat("\""));
  // Enter presses the button that has the focus, and "Yes" comes first.
  platform::controls().SetControlFocus(window, platform::IDCANCEL);
}

}  // namespace kelvaro
