#include <string>

#include "app/platform/windows/ui/windows_ui.h"
#include "app/platform/windows/windows_calls.h"
#include "app/platform/windows/windows_platform.h"
#include "app/resources/settings_keys.h"
#include "app/start/usage.h"
#include "app/window/run_program.h"
#include "foundation/paths.h"
#include "foundation/version.h"

namespace kelvaro {
namespace {

// A program of Windows' desktop has no console to print to.
int Say(const std::string& text) {
  platform::desktop().MessageBoxA(platform::kNoWindow, text, "Kelvaro", MB_OK);
  return 0;
}

void TellUnlessSettingsCanBeStored() {
  if (platform::WindowsRegistry::CanStore(kProductKey)) return;
  platform::desktop().Tell(
      std::string("Settings can't be stored in HKEY_CURRENT_USER\\") + kProductKey +
      ".\n\nChanges of them last until Kelvaro ends, and are then lost. To keep them, "
      "give yourself the right to write to that key.");
}

int Run(const std::string& firstWord) {
  platform::WindowsPlatform system;
  platform::ui::WindowsUi ui;
  platform::Platform groups = system.Groups();
  ui.AddTo(&groups);
  platform::WindowsCalls calls;
  groups.calls = &calls;
  const platform::InstalledPlatform installed(groups);
  if (firstWord == "--help") return Say(UsageText());
  if (firstWord == "--version")
    return Say(std::string("Kelvaro, Version ") + VersionNumber().Text());
  const std::string refusal = ProgramPathRefusal();
  if (!refusal.empty()) {
    Say(refusal);
    return 1;
  }
  TellUnlessSettingsCanBeStored();
  return RunProgram();
}

}  // namespace
}  // namespace kelvaro

int main(int argc, char** argv) { return kelvaro::Run(argc > 1 ? argv[1] : ""); }
