#include "app/dialogs/dialogs.h"
#include "app/platform/registry.h"
#include "app/resources/control_ids.h"
#include "app/window/main_window.h"
#include "foundation/paths.h"
#include "foundation/registry_key.h"

namespace kelvaro {
namespace {

using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;

constexpr char kShowAutoDetectUsage[] = "Show Auto-Detect Usage";
constexpr char kStartMinimized[] = "Start Minimized";
constexpr char kSmartCheck[] = "Smart Check";
constexpr char kShiftReminder[] = "Shift Reminder";
constexpr char kLastProfile[] = "Last Profile";
constexpr char kNoDeviceErrorMsg[] = "No Device Error Msg";
constexpr char kAutodetectDevicePlugin[] = "Autodetect Device Plugin";
constexpr char kWelcomeDisplay[] = "Welcome Display";
constexpr char kRunValue[] = "Kelvaro";

bool ReadFlag(RegistryKey* key, const char* name, bool* flag) {
  std::uint32_t number = 0;
  if (!key->GetDword(nullptr, name, &number)) return false;
  *flag = number != 0;
  return true;
}

platform::HKEY HiveOfRun() {
  return RegistryKey(HKEY_CURRENT_USER, kRunKey, false).isOpen ? HKEY_CURRENT_USER
                                                               : HKEY_LOCAL_MACHINE;
}

}  // namespace

bool MainWindow::LoadAppSettings() {
  RegistryKey key(HKEY_CURRENT_USER, kProductKey, false);
  bool complete = true;
  ByteString deviceName;
  if (key.GetString(nullptr, kLastDevice, &deviceName) &&
      deviceManager->SelectDeviceByName(deviceName)) {
    complete = LoadDeviceSettings();
    currentDeviceGuid = deviceManager->SelectedGuid();
    currentDeviceName = deviceManager->SelectedName();
  }
  // Kept: this one value alone isn't taken after a device's values couldn't be read.
  bool show = false;
  if (!ReadFlag(&key, kShowAutoDetectUsage, &show)) {
    complete = false;
  } else if (complete) {
    showAutoDetectUsage = show;
  }
  ReadFlag(&key, kStartMinimized, &startMinimized);
  ReadFlag(&key, kSmartCheck, &smartCheck);
  ReadFlag(&key, kShiftReminder, &shiftReminder);
  key.GetString(nullptr, kLastProfile, &lastProfile);
  ReadFlag(&key, kNoDeviceErrorMsg, &noDeviceErrorMsg);
  ReadFlag(&key, kAutodetectDevicePlugin, &autodetectDevicePlugin);
  key.GetDword(nullptr, kWelcomeDisplay, &welcomeDisplay);
  return complete;
}

bool MainWindow::SaveAppSettings() {
  const RegistryWrites together;
  if (deviceManager && deviceManager->DeviceSelected()) SaveDeviceSettings();
  RegistryKey key(HKEY_CURRENT_USER, kProductKey, true);
  key.SetDword(nullptr, kShowAutoDetectUsage, showAutoDetectUsage);
  key.SetDword(nullptr, kStartMinimized, startMinimized);
  key.SetDword(nullptr, kSmartCheck, smartCheck);
  key.SetDword(nullptr, kShiftReminder, shiftReminder);
  key.SetString(nullptr, kLastProfile, lastProfile);
  key.SetDword(nullptr, kNoDeviceErrorMsg, noDeviceErrorMsg);
  key.SetDword(nullptr, kAutodetectDevicePlugin, autodetectDevicePlugin);
  key.SetDword(nullptr, kWelcomeDisplay, welcomeDisplay);
  return true;
}

void MainWindow::RememberLastProfile(const ByteString& name) {
  lastProfile = name;
  RegistryKey(HKEY_CURRENT_USER, kProductKey, true).SetString(nullptr, kLastProfile, lastProfile);
}

// Since the first try makes the new key, whatever comes of it, there is one try only.
void MainWindow::MigrateSettings() {
  for (const platform::HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    if (RegistryKey(hive, kProductKey, false).isOpen) continue;
    RegistryKey product(hive, kProductKey, true);
    RegistryKey former(hive, kFormerProductKey, false);
    product.CopyTree(&former);
  }
}

bool MainWindow::LaunchesAtStartup() {
  ByteString path;
  return RegistryKey(HiveOfRun(), kRunKey, false).GetString(nullptr, kRunValue, &path);
}

void MainWindow::OnLaunchAtStartup() {
  if (Checked(main_window::kLaunchAtStartup)) {
    RegistryKey(HiveOfRun(), kRunKey, true).SetString(nullptr, kRunValue, programPath);
  } else {
    RegistryKey(HiveOfRun(), kRunKey, false).DeleteValue(nullptr, kRunValue);
  }
}

void MainWindow::OnStartMinimized() {
  startMinimized = Checked(main_window::kStartMinimized);
  SaveAppSettings();
}

void MainWindow::OnSmartCheck() {
  smartCheck = Checked(main_window::kSmartCheck);
  SaveAppSettings();
}

void MainWindow::OnAdvanced() {
  AdvancedSettingsDialog dialog(autodetectDevicePlugin);
  if (dialog.DoModal(window) != platform::IDOK) return;
  autodetectDevicePlugin = dialog.autodetectDevicePlugin;
  noDeviceErrorMsg = dialog.autodetectDevicePlugin;
  SaveAppSettings();
}

}  // namespace kelvaro
