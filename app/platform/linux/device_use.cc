#include "app/platform/linux/device_use.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/program_file.h"

namespace platform {
namespace {

// As far as it can be read: a process may end meanwhile, or be another user's.
bool HasOpen(const std::string& process, const std::string& path) {
  std::error_code error;
  for (std::filesystem::directory_iterator file("/proc/" + process + "/fd", error), end;
       !error && file != end; file.increment(error)) {
    std::error_code closed;
    if (std::filesystem::read_symlink(file->path(), closed) == path) return true;
  }
  return false;
}

}  // namespace

std::vector<OtherProgram> ProgramsWithOpen(const std::string& path) {
  std::vector<OtherProgram> programs;
  for (const std::uint32_t process : ProcessesIn("/proc")) {
    const std::string name = std::to_string(process);
    if (process == static_cast<std::uint32_t>(getpid()) || !HasOpen(name, path)) continue;
    OtherProgram program{process, {}};
    std::ifstream text("/proc/" + name + "/comm");
    std::getline(text, program.name);
    programs.push_back(std::move(program));
  }
  return programs;
}

bool IsGrabbed(const std::string& path) {
  const Descriptor device(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!device) return false;
  if (ioctl(device.Get(), EVIOCGRAB, 1) != 0) return errno == EBUSY;
  ioctl(device.Get(), EVIOCGRAB, 0);
  return false;
}

}  // namespace platform
