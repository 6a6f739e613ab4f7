#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kNameLabel = 1138;

}  // namespace

DeleteProfileDialog::DeleteProfileDialog(const ByteString& name)
    : Dialog(resources::kDeleteProfile), name(name) {}

void DeleteProfileDialog::OnInit() {
  SetText(kNameLabel, ByteString("\"").Concat(name).Concat("\""));
  // Enter presses the button that has the focus, and "Yes" comes first.
  platform::SetControlFocus(window, platform::IDCANCEL);
}

}  // namespace kelvaro
