#include "app/platform/linux/device_use.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "app/platform/byte_text.h"
#include "app/platform/linux/descriptor.h"

namespace platform {
namespace {

// As far as it can be read: a process may end meanwhile, or be another user's.
std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error))
    names.push_back(entry->path().filename());
  return names;
}

bool HasOpen(const std::string& process, const std::string& path) {
  const std::string folder = "/proc/" + process + "/fd";
  const std::vector<std::string> names = NamesIn(folder);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    std::error_code error;
    return std::filesystem::read_symlink(folder + "/" + name, error) == path;
  });
}

}  // namespace

std::vector<OtherProgram> ProgramsWithOpen(const std::string& path) {
  std::vector<OtherProgram> programs;
  for (const std::string& name : NamesIn("/proc")) {
    const auto process = ParseWholeNumber(name);
    if (!process) continue;
    OtherProgram program;
    program.process = static_cast<std::uint32_t>(*process);
    if (program.process == static_cast<std::uint32_t>(getpid()) || !HasOpen(name, path)) continue;
    std::ifstream text("/proc/" + name + "/comm");
    std::getline(text, program.name);
    programs.push_back(std::move(program));
  }
  std::sort(programs.begin(), programs.end(),
            [](const auto& a, const auto& b) { return a.process < b.process; });
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
