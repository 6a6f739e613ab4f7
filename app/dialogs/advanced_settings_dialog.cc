#include "app/dialogs/dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"

namespace kelvaro {

using namespace advanced_settings;

namespace {}  // namespace

AdvancedSettingsDialog::AdvancedSettingsDialog(bool autodetectDevicePlugin)
    : Dialog(resources::kAdvancedSettings), autodetectDevicePlugin(autodetectDevicePlugin) {}

void AdvancedSettingsDialog::OnInit() {
  Check(kAutodetectDevicePlugin, autodetectDevicePlugin);
  if (!platform::controls().CreateToolTip(window)) return;
  LimitTips(400);
  platform::controls().ActivateToolTip(window, true);
  platform::controls().AddTool(window, kAutodetectDevicePlugin);
}

void AdvancedSettingsDialog::OnOK() {
  autodetectDevicePlugin = Checked(kAutodetectDevicePlugin);
  Dialog::OnOK();
}

std::string AdvancedSettingsDialog::OnToolTip(std::uint32_t id) {
  const char* const text = id == kAutodetectDevicePlugin ? resources::String(id) : nullptr;
  return text ? text : "";
}

}  // namespace kelvaro
