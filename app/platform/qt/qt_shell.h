// The person's session behind the seam, by Qt.
#pragma once

#include <string>
#include <vector>

#include "app/platform/qt/help_viewer.h"
#include "app/platform/shell.h"

namespace platform::qt {

class QtShell final : public Shell {
 public:
  std::intptr_t ShellExecuteA(const std::string& target) override;
  bool MessageBeep(std::uint32_t type) override;
  LibraryHandle LoadLibraryA(const std::string& name) override;
  HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) override;
  std::string GetCommandLineA() override;

 private:
  HelpViewer help;
};

// The program's path and its arguments in one text: an argument with blanks is in double quotes,
// behind its key if it begins with one (profile="My Game"); one that has quotes of its own stays as
// it is.
std::string JoinCommandLine(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace platform::qt
