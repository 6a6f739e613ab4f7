// The person's folders, as the shell has them.
#pragma once

#include "rendlink/launcher.h"
#include "rendlink/program/windows/shell_shortcuts.h"

namespace kelvaro::rendlink {

class WindowsSession final : public Session {
 public:
  std::string DesktopFolder() override;
  std::string MenuFolder() override;
  std::string FullPath(const std::string& typed) override;
  LauncherKind& Launchers() override { return shortcuts; }

 private:
  ShellShortcuts maker;
  Shortcuts shortcuts{maker};
};

// Full path of a program, as the system finds it to start it: a name without a folder in the
// current one, the system's and those of PATH; ".exe" needn't be said. Empty for none.
std::string FindProgram(const std::string& typed);

}  // namespace kelvaro::rendlink
