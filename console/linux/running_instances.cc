#include "console/running_instances.h"

#include <string>

#include "app/platform/linux/instance_socket.h"

namespace kelvaro::console {

std::vector<std::uint32_t> RunningInstances() {
  const std::string folder = platform::InstanceFolder();
  std::vector<std::uint32_t> running = platform::Instances(folder);
  std::erase_if(running,
                [&](std::uint32_t process) { return !platform::IsListening(folder, process); });
  return running;
}

}  // namespace kelvaro::console
