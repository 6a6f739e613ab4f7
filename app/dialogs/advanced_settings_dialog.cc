#include "app/dialogs/dialogs.h"
#include "app/resources/resources.h"

namespace kelvaro {

namespace {

constexpr std::uint32_t kAutoDetectBox = 1199;
constexpr std::int32_t kTipWidth = 400;   // pixels
constexpr std::int32_t kTipTime = 10000;  // ms

}  // namespace

AdvancedSettingsDialog::AdvancedSettingsDialog(bool autodetectDevicePlugin)
    : Dialog(resources::kAdvancedSettings), autodetectDevicePlugin(autodetectDevicePlugin) {}

void AdvancedSettingsDialog::OnInit() {
  Check(kAutoDetectBox, autodetectDevicePlugin);
  if (!platform::CreateToolTip(window)) return;
  platform::SetToolTipWidth(window, kTipWidth);
  platform::SetToolTipTime(window, kTipTime);
  platform::ActivateToolTip(window, true);
  platform::AddTool(window, kAutoDetectBox);
}

void AdvancedSettingsDialog::OnOK() {
  autodetectDevicePlugin = Checked(kAutoDetectBox);
  Dialog::OnOK();
}

std::string AdvancedSettingsDialog::OnToolTip(std::uint32_t id) {
  const char* const text = id == kAutoDetectBox ? resources::String(id) : nullptr;
  return text ? text : "";
}

}  // namespace kelvaro
