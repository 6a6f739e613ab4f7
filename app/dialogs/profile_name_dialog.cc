#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

using namespace profile_name;

namespace {

constexpr char kBlankNameText[] = "Profile name cannot be blank";
constexpr char kBlankNameTitle[] = "Missing Profile Name";

}  // namespace

ProfileNameDialog::ProfileNameDialog(const ByteString& title, const ByteString& firstPart,
                                     const ByteString& oldName)
    : Dialog(resources::kProfileName),
      name(oldName),
      title(title),
      firstPart(firstPart),
      oldName(oldName) {}

void ProfileNameDialog::OnInit() {
  platform::desktop().SetWindowTextA(window, Bytes(title));
  SetText(kTopLine, firstPart.Concat(" \"").Concat(oldName).Concat("\""));
  SetText(kName, oldName);
}

void ProfileNameDialog::OnOK() {
  const ByteString entered = Text(kName);
  if (entered.IsEmpty()) {
    Box(kBlankNameText, kBlankNameTitle, platform::MB_OK);
    platform::controls().SetControlFocus(window, kName);
    return;
  }
  name = entered;
  Dialog::OnOK();
}

}  // namespace kelvaro
