// Processes by the functions that tell of them, which are bound by name, and the windows of all
// programs. There is no look into tasks of 16 bits: no system that this program runs on has any.
// Any thread.
#pragma once

#include <string>
#include <vector>

#include "app/platform/processes.h"

namespace platform {

class WindowsProcesses final : public Processes {
 public:
  std::uint32_t GetCurrentProcessId() override;
  // As the family of the system has it: by PSAPI, or by Toolhelp, whose paths are bare names on
  // systems that have PSAPI too.
  bool ListProcesses(std::vector<RunningProcess>* list) override;
  // Each of the two. False where a function is missing.
  static bool ListByPsapi(std::vector<RunningProcess>* list);
  static bool ListByToolhelp(std::vector<RunningProcess>* list);

  bool CreateProcessA(const std::string& application, const std::string& commandLine,
                      std::uint32_t flags, const std::string* folder,
                      PROCESS_INFORMATION* information) override;
  bool EnumWindows(std::vector<TopLevelWindow>* list) override;
  bool PostToWindow(WindowHandle window, std::uint32_t message) override;
};

}  // namespace platform
