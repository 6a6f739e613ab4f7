#include "app/dialogs/small_dialogs.h"

#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {
namespace {

constexpr platform::Colour kTextColour = platform::Rgb(0, 0, 64);
constexpr platform::Colour kWhite = platform::Rgb(255, 255, 255);
constexpr std::int32_t kTextHeight = 14;
constexpr std::int32_t kTextWeight = 800;

constexpr char kBlankNameText[] = "Profile name cannot be blank";
constexpr char kBlankNameTitle[] = "Missing Profile Name";

}  // namespace

NewProfileDialog::NewProfileDialog() : Dialog(resources::kNewProfile) {}

void NewProfileDialog::OnOK() {
  name = Text(new_profile::kName);
  Dialog::OnOK();
}

DeleteProfileDialog::DeleteProfileDialog(const ByteString& name)
    : Dialog(resources::kDeleteProfile), name(name) {}

void DeleteProfileDialog::OnInit() {
  SetText(delete_profile::kName, InQuotes(name));
  // Enter presses the button that has the focus, and "Yes" comes first.
  platform::controls().SetControlFocus(window, platform::IDCANCEL);
}

ProfileNameDialog::ProfileNameDialog(const ByteString& title, const ByteString& firstPart,
                                     const ByteString& oldName)
    : Dialog(resources::kProfileName),
      name(oldName),
      title(title),
      firstPart(firstPart),
      oldName(oldName) {}

void ProfileNameDialog::OnInit() {
  platform::desktop().SetWindowTextA(window, Bytes(title));
  SetText(profile_name::kTopLine, firstPart.Concat(" ").Concat(InQuotes(oldName)));
  SetText(profile_name::kName, oldName);
}

void ProfileNameDialog::OnOK() {
  const ByteString entered = Text(profile_name::kName);
  if (entered.IsEmpty()) {
    Box(kBlankNameText, kBlankNameTitle, platform::MB_OK);
    platform::controls().SetControlFocus(window, profile_name::kName);
    return;
  }
  name = entered;
  Dialog::OnOK();
}

AdvancedSettingsDialog::AdvancedSettingsDialog(bool autodetectDevicePlugin)
    : Dialog(resources::kAdvancedSettings), autodetectDevicePlugin(autodetectDevicePlugin) {}

void AdvancedSettingsDialog::OnInit() {
  Check(advanced_settings::kAutodetectDevicePlugin, autodetectDevicePlugin);
  if (!platform::controls().CreateToolTip(window)) return;
  LimitTips(400);
  platform::controls().AddTool(window, advanced_settings::kAutodetectDevicePlugin);
}

void AdvancedSettingsDialog::OnOK() {
  autodetectDevicePlugin = Checked(advanced_settings::kAutodetectDevicePlugin);
  Dialog::OnOK();
}

std::string AdvancedSettingsDialog::OnToolTip(std::uint32_t id) {
  const char* const text =
      id == advanced_settings::kAutodetectDevicePlugin ? resources::String(id) : nullptr;
  return text ? text : "";
}

WelcomeDialog::WelcomeDialog() : Dialog(resources::kWelcome) {}

ByteString WelcomeDialog::Text() {
  return "\r\n                        Welcome to Kelvaro by Marnstone"
         "\r\n\r\n"
         "This utility gives you the ultimate control over your games by simulating keyboard and "
         "mouse input from your game pad or joystick. Per-game settings are stored in profiles. "
         "The included Rendlink utility enables you to start Kelvaro with your game in a "
         "single-step process."
         "\r\n\r\n"
         "Example profiles are included. Before using an example profile you will need to "
         "associate a device with it, and without modification it probably won't work directly "
         "with your game device (the buttons and controls may be set wrong for your device and/or "
         "preferences). By looking at a few of the examples, and viewing the pop-up help for each "
         "control, you can jump right into creating profiles for your games. For more advanced "
         "options and detailed explanations, please refer to the included electronic help."
         "\r\n\r\n"
         "Thank for trying this software, and we hope you enjoy using Kelvaro.";
}

void WelcomeDialog::OnInit() {
  platform::controls().SetPicture(window, welcome::kPicture,
                                  platform::desktop().LoadBitmapA(resources::kBannerBitmap));
  platform::controls().SetControlFont(window, welcome::kText, "Arial", kTextHeight, kTextWeight,
                                      false);
  platform::controls().SetTextColour(window, welcome::kText, kTextColour);
  platform::controls().SetBackgroundColour(window, welcome::kText, kWhite);
  SetText(welcome::kText, Text());
}

void ReminderDialog::OnOK() {
  dontShowAgain = Checked(checkBox);
  Dialog::OnOK();
}

void ReminderDialog::OnCancel() {
  dontShowAgain = Checked(checkBox);
  Dialog::OnCancel();
}

AutoDetectModeDialog::AutoDetectModeDialog()
    : ReminderDialog(resources::kAutoDetectMode, auto_detect_mode::kDontShowAgain) {}

ShiftKeyRequiredDialog::ShiftKeyRequiredDialog()
    : ReminderDialog(resources::kShiftKeyRequired, shift_key_required::kDontShowAgain) {}

}  // namespace kelvaro
