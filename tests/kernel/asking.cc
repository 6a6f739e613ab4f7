#include "tests/kernel/asking.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/host/files.h"

namespace kelvaro::kernel {
namespace {

// Only programs of the running one's own name are listened to.
std::string AskerPath() {
  static const tests::TemporaryFolder folder("/dev/shm");
  static const std::string path = [] {
    const std::string copy = folder.In(std::filesystem::path(KelvaroctlPath()).filename());
    std::filesystem::copy_file(KELVARO_ASKER, copy);
    return copy;
  }();
  return path;
}

}  // namespace

Asking::Asking(pid_t process, int requestsASecond, const ChildOptions& environment)
    : child({AskerPath(), std::to_string(process), std::to_string(requestsASecond)}, environment) {}

int Asking::End() {
  child.Signal(SIGTERM);
  return child.WaitForEnd() == 0 ? std::atoi(child.Out().c_str()) : 0;
}

}  // namespace kelvaro::kernel
