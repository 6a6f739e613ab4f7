#include "console/doctor/machine_facts.h"

#include <cstdlib>

#include "app/platform/windows/windows_registry.h"
#include "app/resources/settings_keys.h"
#include "console/file_machine.h"
#include "console/json_text.h"
#include "console/real_machine.h"
#include "console/running_instances.h"
#include "device/device_manager.h"
#include "storage/profile_library.h"

// Last.
#include "app/platform/windows/win32.h"

#include <shlobj.h>

namespace kelvaro::console {
namespace {

void LookAtPads(WindowsFacts* facts) {
  const RealMachine machine;
  DeviceManager manager(platform::kNoWindow);
  if (!manager.DirectInputCreated()) {
    ByteString text;
    manager.PeekError(&text);
    facts->directInputTrouble = Bytes(text);
    return;
  }
  for (std::int32_t i = 0; i < manager.DeviceCount(); ++i) {
    PadFacts pad;
    pad.name = Bytes(manager.DeviceName(i));
    // As the window takes it; the system doesn't tell who has it otherwise.
    if (!manager.SelectDevice(i)) pad.whyClosed = "DirectInput doesn't hand it out";
    facts->pads.push_back(pad);
  }
}

FolderFacts LookAtProfiles() {
  const FileMachine machine;
  return {"profiles", Bytes(ProfileLibrary::ProfileFolder()), ProfileLibrary::CanSave()};
}

FolderFacts LookAtSettings() {
  return {"settings", std::string("HKEY_CURRENT_USER\\") + kProductKey,
          platform::WindowsRegistry::CanStore(kProductKey)};
}

}  // namespace

std::string HomeFolder() {
  const char* const folder = std::getenv("USERPROFILE");
  return folder ? folder : "";
}

std::string SystemText() {
  // What GetVersionEx tells is what the manifest knows.
  using Tell = LONG(WINAPI*)(OSVERSIONINFOW*);
  const HMODULE library = GetModuleHandleA("ntdll.dll");
  const auto tell = library ? platform::FunctionOf<Tell>(library, "RtlGetVersion") : nullptr;
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  std::string text = "Windows";
  if (tell && tell(&version) == 0) {
    text += " " + std::to_string(version.dwMajorVersion) + "." +
            std::to_string(version.dwMinorVersion) + "." + std::to_string(version.dwBuildNumber);
  }
  return text + ", x86_64";
}

std::vector<Remark> ExamineMachine() {
  WindowsFacts facts;
  LookAtPads(&facts);
  facts.hasNotificationArea = FindWindowA("Shell_TrayWnd", nullptr) != nullptr;
  facts.isAdministrator = IsUserAnAdmin();
  facts.folders = {LookAtProfiles(), LookAtSettings()};
  facts.running = RunningInstances();
  return Diagnose(facts);
}

}  // namespace kelvaro::console
