#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kNameEdit = 1137;
constexpr std::uint32_t kTopLabel = 1157;

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
  platform::SetWindowTextA(window, Bytes(title));
  SetText(kTopLabel, firstPart.Concat(" \"").Concat(oldName).Concat("\""));
  SetText(kNameEdit, oldName);
}

void ProfileNameDialog::OnOK() {
  const ByteString entered = Text(kNameEdit);
  if (entered.IsEmpty()) {
    Box(kBlankNameText, kBlankNameTitle, platform::MB_OK);
    platform::SetControlFocus(window, kNameEdit);
    return;
  }
  name = entered;
  Dialog::OnOK();
}

}  // namespace kelvaro
