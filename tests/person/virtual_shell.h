// The shell beside the windows on Qt: opens and asks nothing, and keeps what it was asked for.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "app/platform/shell.h"
#include "app/platform/simulation/journal.h"
#include "tests/person/screen.h"

namespace platform::simulation {

class VirtualShell final : public Shell {
 public:
  explicit VirtualShell(Journal& journal);
  ~VirtualShell() override;
  VirtualShell(const VirtualShell&) = delete;
  VirtualShell& operator=(const VirtualShell&) = delete;

  std::intptr_t ShellExecuteA(const std::string& target) override;
  bool MessageBeep(std::uint32_t type) override;
  LibraryHandle LoadLibraryA(const std::string& name) override;
  HtmlHelpFunction GetHelpFunction(LibraryHandle library, std::uint32_t ordinal) override;
  std::string GetCommandLineA(char) override { return commandLine; }
  bool ChooseFile(WindowHandle owner, const std::string& title, bool forSaving,
                  const std::string& suggested, std::string* path) override;
  bool ChooseFolder(WindowHandle owner, const std::string& title, const std::string& suggested,
                    std::string* path) override;

  std::string commandLine = "kelvaro";
  std::vector<std::string> opened;
  std::deque<std::string> chosenPaths;
  std::vector<AskedPath> askedPaths;
  std::size_t beeps = 0;
  std::vector<HelpCall> helpCalls;
  std::map<std::string, bool> libraries{{"hhctrl.ocx", true}};
  std::vector<std::string> askedFor;

 private:
  static std::uintptr_t HtmlHelp(WindowHandle caller, const char* file, std::uint32_t command,
                                 std::uintptr_t data);
  bool AnswerPath(const AskedPath& asked, std::string* path);
  std::uintptr_t Help(const char* file, std::uint32_t command, std::uintptr_t data);

  Journal& journal;
  std::uint32_t lastCookie = 0;
};

}  // namespace platform::simulation
