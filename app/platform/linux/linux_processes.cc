#include "app/platform/linux/linux_processes.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string_view>
#include <utility>

#include "app/platform/linux/command_words.h"
#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/find_program.h"
#include "app/platform/linux/last_error.h"
#include "app/platform/linux/program_file.h"
#include "app/platform/linux/program_start.h"

namespace platform {
namespace {

// A window's number among those of all processes.
constexpr unsigned kProcessShift = 32;
constexpr WindowHandle kNumberMask = 0xFFFFFFFFu;

// It has ended, and its parent hasn't looked yet.
bool HasEnded(const std::string& process) {
  char text[512];
  const Descriptor file(open(("/proc/" + process + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
  const ssize_t size = file ? read(file.Get(), text, sizeof text) : 0;
  if (size <= 0) return true;
  // The state stands behind the name, which is in brackets and may hold brackets itself.
  const std::string_view whole(text, static_cast<std::size_t>(size));
  const std::size_t bracket = whole.rfind(')');
  return bracket != std::string_view::npos && bracket + 2 < whole.size() &&
         (whole[bracket + 2] == 'Z' || whole[bracket + 2] == 'X');
}

std::uint32_t WaitForEnd(void* parameter) {
  const auto process = static_cast<pid_t>(reinterpret_cast<std::intptr_t>(parameter));
  int status = 0;
  while (waitpid(process, &status, 0) < 0)
    if (errno != EINTR) return 0;
  return static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status)
                                                      : 128 + WTERMSIG(status));
}

}  // namespace

LinuxProcesses::LinuxProcesses(Threads& threads, std::string folder)
    : threads(threads), folder(std::move(folder)) {}

bool LinuxProcesses::OfferWindows(WindowSource windows, WindowPost post) {
  ownWindows = std::move(windows);
  ownPost = std::move(post);
  offered = InstanceSocket::Open(folder, ownWindows, ownPost);
  return offered != nullptr;
}

std::uint32_t LinuxProcesses::GetCurrentProcessId() { return static_cast<std::uint32_t>(getpid()); }

bool LinuxProcesses::ListProcesses(std::vector<RunningProcess>* list) {
  list->clear();
  for (const std::uint32_t id : ProcessesIn("/proc")) {
    const std::string name = std::to_string(id);
    RunningProcess process{id, ProgramFileOf(name)};
    if (process.path.empty() && HasEnded(name)) continue;
    list->push_back(std::move(process));
  }
  return !list->empty() || Fail(ENOENT);
}

bool LinuxProcesses::CreateProcessA(const std::string& application, const std::string& commandLine,
                                    std::uint32_t, const std::string* wantedFolder,
                                    PROCESS_INFORMATION* information) {
  *information = {};
  for (const std::string* text : {&application, &commandLine})
    if (text->find('\0') != std::string::npos) return Fail(EINVAL);
  int missing = 0;
  const std::string program = FindProgram(application, &missing);
  if (program.empty()) return Fail(missing);

  ProgramStart start{program, CommandWords(commandLine), wantedFolder ? *wantedFolder : ""};
  if (start.words.empty()) start.words.push_back(program);
  pid_t process = -1;
  if (const int error = StartProgram(start, &process)) return Fail(error);
  void* const child = reinterpret_cast<void*>(std::intptr_t{process});
  const Handle waiter = threads.CreateThread(WaitForEnd, child, "waits for game", nullptr);
  if (waiter == kInvalidHandle) {
    // Without a thread nobody would see it end.
    kill(process, SIGKILL);
    WaitForEnd(child);
    return Fail(EAGAIN);
  }
  information->hProcess = waiter;
  information->dwProcessId = static_cast<std::uint32_t>(process);
  return true;
}

bool LinuxProcesses::EnumWindows(std::vector<TopLevelWindow>* list) {
  list->clear();
  const auto add = [list](std::uint32_t process, const std::vector<OfferedWindow>& windows) {
    for (const OfferedWindow& window : windows)
      list->push_back({WindowHandle{process} << kProcessShift | (window.window & kNumberMask),
                       process, window.visible, window.iconic});
  };
  const std::uint32_t own = GetCurrentProcessId();
  if (ownWindows) add(own, ownWindows());
  for (const std::uint32_t process : Instances(folder)) {
    std::vector<OfferedWindow> windows;
    if (process != own && AskWindows(folder, process, &windows)) add(process, windows);
  }
  return true;
}

bool LinuxProcesses::PostToWindow(WindowHandle window, std::uint32_t message) {
  const auto process = static_cast<std::uint32_t>(window >> kProcessShift);
  const WindowHandle number = window & kNumberMask;
  if (process == GetCurrentProcessId()) return ownPost && ownPost(number, message);
  return PostToInstance(folder, process, number, message);
}

}  // namespace platform
