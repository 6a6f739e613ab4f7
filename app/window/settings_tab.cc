#include "app/window/settings_tab.h"

#include "app/dialogs/small_dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "app/resources/settings_keys.h"
#include "foundation/registry_key.h"

namespace kelvaro {
namespace {

using namespace main_window;
using platform::HKEY_CURRENT_USER;

constexpr char kRunValue[] = "Kelvaro";

platform::HKEY HiveOfRun() {
  return RegistryKey(HKEY_CURRENT_USER, kRunKey, false).isOpen ? HKEY_CURRENT_USER
                                                               : platform::HKEY_LOCAL_MACHINE;
}

// What the box shows; null for another control.
bool AppSettings::*SettingOf(std::uint32_t checkBox) {
  for (const Setting& setting : Settings()) {
    if (checkBox != 0 && setting.checkBox == checkBox)
      return std::get<bool AppSettings::*>(setting.member);
  }
  return nullptr;
}

}  // namespace

bool SettingsTab::LoadAppSettings() {
  RegistryKey key(HKEY_CURRENT_USER, kProductKey, false);
  AppSettings& settings = session.settings;
  const bool hasLastDevice = settings.LoadBeforeDevice(&key);
  session.deviceManager->SetAnswerAtOnce(settings.answerAtOnce);
  session.deviceManager->SetExclusive(
      [&settings](const ByteString& name) { return settings.IsOnlyForKelvaro(name); });
  const bool deviceLoaded = !hasLastDevice || deviceTab.LoadLastDevice(settings.lastDevice);
  return settings.Load(&key, deviceLoaded);
}

void SettingsTab::ShowLaunchesAtStartup() {
  ByteString path;
  if (RegistryKey(HiveOfRun(), kRunKey, false).GetString(nullptr, kRunValue, &path))
    dialog.Check(kLaunchAtStartup, true);
}

void SettingsTab::ShowCheckBoxes() {
  for (const Setting& setting : Settings()) {
    const auto shown = SettingOf(setting.checkBox);
    if (shown && session.settings.*shown) dialog.Check(setting.checkBox, true);
  }
}

void SettingsTab::AttachLinks() {
  if (*resources::kWebAddress) {
    webLink.hyperlink.target = resources::kWebAddress;
    webLink.Attach(dialog.window, kWebLink);
  }
  if (*resources::kSupportAddress) {
    mailLink.hyperlink.target = ByteString("mailto:").Concat(resources::kSupportAddress);
    mailLink.Attach(dialog.window, kMailLink);
  }
}

void SettingsTab::OnLaunchAtStartup() {
  if (dialog.Checked(kLaunchAtStartup)) {
    RegistryKey(HiveOfRun(), kRunKey, true).SetString(nullptr, kRunValue, session.programPath);
  } else {
    RegistryKey(HiveOfRun(), kRunKey, false).DeleteValue(nullptr, kRunValue);
  }
}

void SettingsTab::OnAdvanced() {
  AdvancedSettingsDialog advanced(session.settings.autodetectDevicePlugin);
  if (advanced.DoModal(dialog.window) != platform::IDOK) return;
  session.settings.autodetectDevicePlugin = advanced.autodetectDevicePlugin;
  session.settings.noDeviceErrorMsg = advanced.autodetectDevicePlugin;
  session.WakeTimer();
  session.SaveAppSettings();
}

void SettingsTab::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t) {
  if (notice != platform::Notice::Clicked) return;
  if (bool AppSettings::*const setting = SettingOf(id)) {
    session.settings.*setting = dialog.Checked(id);
    session.SaveAppSettings();
  }
  static constexpr Handler<SettingsTab> kHandlers[] = {
      {kLaunchAtStartup, platform::Notice::Clicked, &SettingsTab::OnLaunchAtStartup},
      {kAdvanced, platform::Notice::Clicked, &SettingsTab::OnAdvanced},
      {kWebLink, platform::Notice::Clicked, &SettingsTab::OnWebLink},
      {kMailLink, platform::Notice::Clicked, &SettingsTab::OnMailLink},
  };
  Handle(this, kHandlers, id, notice);
}

}  // namespace kelvaro
