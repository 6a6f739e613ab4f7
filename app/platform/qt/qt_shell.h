// The person's session behind the seam, by Qt.
#pragma once

#include <QFileDialog>
#include <string>
#include <vector>

#include "app/platform/qt/help_viewer.h"
#include "app/platform/qt/qt_desktop.h"
#include "app/platform/shell.h"

namespace platform::qt {

class QtShell : public Shell {
 public:
  explicit QtShell(QtDesktop& desktop) : desktop(desktop) {}

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
  bool Choose(QFileDialog& dialog, const std::string& suggested, std::string* path);

  QtDesktop& desktop;
  HelpViewer help;
};

// The program's path and its arguments in one text: an argument with blanks is in double quotes,
// behind its key if it begins with one (profile="My Game"); one that has quotes of its own, or
// `quoteSub`, which stands for one, stays as it is.
std::string JoinCommandLine(const std::string& program, const std::vector<std::string>& arguments,
                            char quoteSub);

}  // namespace platform::qt
