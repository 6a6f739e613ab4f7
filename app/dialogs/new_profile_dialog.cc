#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kNameEdit = 1137;

}  // namespace

NewProfileDialog::NewProfileDialog() : Dialog(resources::kNewProfile) {}

void NewProfileDialog::OnOK() {
  name = Text(kNameEdit);
  Dialog::OnOK();
}

}  // namespace kelvaro
