#include "console/running_instances.h"

#include <string>

#include "app/platform/file_pattern.h"
#include "app/platform/windows/windows_processes.h"

namespace kelvaro::console {

std::vector<std::uint32_t> RunningInstances() {
  const std::string program = "kelvaro.exe";
  std::vector<platform::RunningProcess> processes;
  platform::WindowsProcesses().ListProcesses(&processes);
  std::vector<std::uint32_t> running;
  for (const platform::RunningProcess& process : processes) {
    const std::string name = process.path.substr(process.path.find_last_of("\\/") + 1);
    if (platform::SameName(name, program)) running.push_back(process.id);
  }
  return running;
}

}  // namespace kelvaro::console
