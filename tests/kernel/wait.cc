#include "tests/kernel/wait.h"

#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <string>

#include "tests/host/files.h"

namespace kelvaro::kernel {

std::int64_t NowUs() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

void WaitUntilUs(std::int64_t us) {
  timespec when = {};
  when.tv_sec = us / 1000000;
  when.tv_nsec = us % 1000000 * 1000;
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
  }
}

namespace {

// Whether a thread runs, or waits for what can't be interrupted. Threads come and go meanwhile.
bool SomebodyIsBusy() {
  namespace fs = std::filesystem;
  const std::string self = std::to_string(getpid());
  std::error_code gone;
  for (const fs::directory_entry& process : fs::directory_iterator("/proc", gone)) {
    const std::string name = process.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos || name == self) continue;
    // A thread of the kernel has no program.
    if (fs::read_symlink(process.path() / "exe", gone).empty()) continue;
    for (const fs::directory_entry& thread :
         fs::directory_iterator(process.path() / "task", gone)) {
      const std::string status = tests::Content(thread.path() / "stat");
      const std::size_t state = status.rfind(") ");
      if (state != std::string::npos && (status[state + 2] == 'R' || status[state + 2] == 'D'))
        return true;
    }
  }
  return false;
}

}  // namespace

bool ComesToRest(std::chrono::milliseconds limit) {
  int quiet = 0;
  return tests::Eventually([&] { return (quiet = SomebodyIsBusy() ? 0 : quiet + 1) == 10; }, limit);
}

void WaitMs(int ms) { WaitUntilUs(NowUs() + static_cast<std::int64_t>(ms) * 1000); }

}  // namespace kelvaro::kernel
