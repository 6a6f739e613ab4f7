#include "app/platform/linux/linux_processes.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include "app/platform/linux/command_words.h"
#include "app/platform/linux/cut_off.h"
#include "app/platform/linux/find_program.h"
#include "app/platform/linux/last_error.h"
#include "app/platform/linux/program_file.h"

namespace platform {
namespace {

// A window's number among those of all processes.
constexpr unsigned kProcessShift = 32;
constexpr WindowHandle kNumberMask = 0xFFFFFFFFu;

constexpr char kShell[] = "/bin/sh";

// It has ended, and its parent hasn't looked yet.
bool HasEnded(const std::string& process) {
  char text[512];
  const int file = open(("/proc/" + process + "/stat").c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return true;
  const ssize_t size = read(file, text, sizeof text);
  close(file);
  if (size <= 0) return true;
  // The state stands behind the name, which is in brackets and may hold brackets itself.
  const std::string_view whole(text, static_cast<std::size_t>(size));
  const std::size_t bracket = whole.rfind(')');
  return bracket != std::string_view::npos && bracket + 2 < whole.size() &&
         (whole[bracket + 2] == 'Z' || whole[bracket + 2] == 'X');
}

// What the new process runs, made ready before it exists: between fork and exec nothing may be
// allocated.
struct Start {
  std::vector<char*> arguments;
  std::vector<char*> shellArguments;
  const char* program = nullptr;
  const char* folder = nullptr;  // null: this process's own
  rlimit realtimeRun{RLIM_INFINITY, RLIM_INFINITY};
  int report = -1;  // takes the errno of a failure
};

void GiveUp(const Start& start) {
  const int error = errno;
  if (write(start.report, &error, sizeof error) != sizeof error) _exit(126);
  _exit(127);
}

// In the new process. Never returns.
[[noreturn]] void Become(const Start& start) {
  setsid();
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) sigaction(signal, &action, nullptr);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);

  const sched_param ordinary{};
  sched_setscheduler(0, SCHED_OTHER, &ordinary);
  // A game is no helper: it gets what any program gets. Where this process may not lower its nice
  // value it never raised it.
  errno = 0;
  if (getpriority(PRIO_PROCESS, 0) < 0) setpriority(PRIO_PROCESS, 0, 0);
  setrlimit(RLIMIT_RTTIME, &start.realtimeRun);
  prctl(PR_SET_TIMERSLACK, 0UL, 0UL, 0UL, 0UL);

  const int nothing = open("/dev/null", O_RDONLY);
  if (nothing >= 0) dup2(nothing, STDIN_FILENO);
  // All others close by themselves at exec; whoever forgot to say so is helped.
  close_range(3, ~0u, CLOSE_RANGE_CLOEXEC);

  if (start.folder && chdir(start.folder) != 0) GiveUp(start);
  execv(start.program, start.arguments.data());
  if (errno == ENOEXEC) execv(kShell, start.shellArguments.data());
  GiveUp(start);
  _exit(127);
}

std::uint32_t WaitForEnd(void* parameter) {
  const auto process = static_cast<pid_t>(reinterpret_cast<std::intptr_t>(parameter));
  int status = 0;
  while (waitpid(process, &status, 0) < 0)
    if (errno != EINTR) return 0;
  return static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status)
                                                      : 128 + WTERMSIG(status));
}

// The errno of what went wrong before the program ran, 0 when it runs.
int ErrorOfStart(int report) {
  int error = 0;
  ssize_t size;
  do size = read(report, &error, sizeof error);
  while (size < 0 && errno == EINTR);
  return size == sizeof error ? error : 0;
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
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

std::uint32_t LinuxProcesses::GetCurrentProcessId() {
  StopHereIfCutOff();
  return static_cast<std::uint32_t>(getpid());
}

bool LinuxProcesses::ListProcesses(std::vector<RunningProcess>* list) {
  StopHereIfCutOff();
  list->clear();
  DIR* const entries = opendir("/proc");
  if (!entries) return Fail();
  while (const dirent* entry = readdir(entries)) {
    const std::string_view name = entry->d_name;
    std::uint32_t id = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    if (error != std::errc() || end != name.data() + name.size()) continue;
    RunningProcess process{id, ProgramFileOf(std::string(name))};
    if (process.path.empty() && HasEnded(std::string(name))) continue;
    list->push_back(std::move(process));
  }
  closedir(entries);
  return true;
}

bool LinuxProcesses::CreateProcessA(const std::string& application, const std::string& commandLine,
                                    std::uint32_t, const std::string* wantedFolder,
                                    PROCESS_INFORMATION* information) {
  StopHereIfCutOff();
  *information = {};
  for (const std::string* text : {&application, &commandLine})
    if (text->find('\0') != std::string::npos) return Fail(EINVAL);
  int missing = 0;
  const std::string program = FindProgram(application, &missing);
  if (program.empty()) return Fail(missing);

  std::vector<std::string> words = CommandWords(commandLine);
  if (words.empty()) words.push_back(program);
  std::vector<std::string> shellWords = {kShell, program};
  shellWords.insert(shellWords.end(), words.begin() + 1, words.end());
  Start start;
  start.arguments = Pointers(words);
  start.shellArguments = Pointers(shellWords);
  start.program = program.c_str();
  if (wantedFolder && !wantedFolder->empty()) start.folder = wantedFolder->c_str();
  rlimit now{};
  if (getrlimit(RLIMIT_RTTIME, &now) == 0) start.realtimeRun = {now.rlim_max, now.rlim_max};

  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return Fail();
  start.report = report[1];
  // No handler of this process may run in the new one before it has its own.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t process = fork();
  if (process == 0) Become(start);
  const int forkError = errno;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  close(report[1]);
  if (process < 0) {
    close(report[0]);
    return Fail(forkError);
  }
  const int error = ErrorOfStart(report[0]);
  close(report[0]);
  const Handle waiter =
      error == 0 ? threads.CreateThread(WaitForEnd, reinterpret_cast<void*>(std::intptr_t{process}),
                                        "waits for game", nullptr)
                 : kInvalidHandle;
  if (waiter == kInvalidHandle) {
    // Without a thread nobody would see it end.
    if (error == 0) kill(process, SIGKILL);
    WaitForEnd(reinterpret_cast<void*>(std::intptr_t{process}));
    return Fail(error != 0 ? error : EAGAIN);
  }
  information->hProcess = waiter;
  information->dwProcessId = static_cast<std::uint32_t>(process);
  return true;
}

bool LinuxProcesses::EnumWindows(std::vector<TopLevelWindow>* list) {
  StopHereIfCutOff();
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
  StopHereIfCutOff();
  const auto process = static_cast<std::uint32_t>(window >> kProcessShift);
  const WindowHandle number = window & kNumberMask;
  if (process == GetCurrentProcessId()) return ownPost && ownPost(number, message);
  return PostToInstance(folder, process, number, message);
}

}  // namespace platform
