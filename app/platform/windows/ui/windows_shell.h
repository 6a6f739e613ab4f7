// What the person's session does for a program.
#pragma once

#include "app/platform/windows/ui/windows_desktop.h"

namespace platform::ui {

class WindowsShell final : public Shell {
 public:
  // Borrowed.
  explicit WindowsShell(WindowsDesktop& desktop) : desktop(desktop) {}

  std::intptr_t ShellExecuteA(const std::string& target) override;
  bool MessageBeep(std::uint32_t type) override;
  LibraryHandle LoadLibraryA(const std::string& name) override;
  HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) override;
  std::string GetCommandLineA(char quoteSub) override;
  bool ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                  const std::string& suggested, std::string* path) override;
  bool ChooseFolder(WindowHandle owner, const std::string& title, const std::string& suggested,
                    std::string* path) override;

 private:
  WindowsDesktop& desktop;
};

}  // namespace platform::ui
