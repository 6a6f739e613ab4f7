#include "app/platform/linux/program_start.h"

#include <errno.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include "app/platform/linux/descriptor.h"
#include "app/platform/linux/thread_priority.h"

namespace platform {
namespace {

// A request is texts, each with its zero: the folder of this process (empty where it is gone), the
// one wanted, the file, and the words.
constexpr std::size_t kMostBytes = std::size_t{128} * 1024;

// Only for new processes: other threads may have held the allocator, so nothing is allocated.
std::array<char, kMostBytes> received;
std::array<char*, kMostBytes> pointers;

struct Outcome {
  int error = 0;
  pid_t process = -1;
};

// In the new process.
[[noreturn]] void GiveUp(int report) {
  const int error = errno;
  _exit(write(report, &error, sizeof error) == sizeof error ? 127 : 126);
}

void BecomeOrdinary() {
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
  prctl(PR_SET_TIMERSLACK, SessionTimerSlack(), 0UL, 0UL, 0UL);

  const int nothing = open("/dev/null", O_RDONLY);
  if (nothing >= 0) dup2(nothing, STDIN_FILENO);
  // All others should close by themselves at exec. This helps code that forgot to say so.
  close_range(3, ~0u, CLOSE_RANGE_CLOEXEC);
}

// In the new process.
[[noreturn]] void Become(char* request, std::size_t size, int report) {
  static char shell[] = "/bin/sh";
  BecomeOrdinary();
  // The shell's arguments; those of the program itself begin one later.
  std::size_t count = 0;
  pointers[count++] = shell;
  char* const end = request + size;
  const auto next = [&request, end] {
    char* const text = request;
    while (request < end && *request) ++request;
    ++request;
    return text;
  };
  const char* const ownFolder = next();
  const char* const folder = next();
  char* const program = next();
  while (request < end) pointers[count++] = next();

  // A process may be in a folder that it can't enter any more by its name: then it stays in the one
  // that it has from its maker.
  [[maybe_unused]] const int stays = *ownFolder ? chdir(ownFolder) : 0;
  if (*folder && chdir(folder) != 0) GiveUp(report);
  execv(program, &pointers[1]);
  if (errno == ENOEXEC) {
    pointers[1] = program;
    execv(shell, &pointers[0]);
  }
  GiveUp(report);
}

// The errno of what went wrong before the program ran, 0 when it runs.
int ErrorOfStart(int report) {
  int error = 0;
  const ssize_t size = Retry([&] { return read(report, &error, sizeof error); });
  return size == sizeof error ? error : 0;
}

Outcome Launch(pid_t (*split)(), char* request, std::size_t size) {
  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return {errno, -1};
  Outcome outcome;
  outcome.process = split();
  if (outcome.process == 0) Become(request, size, report[1]);
  outcome.error = errno;
  close(report[1]);
  if (outcome.process > 0) outcome.error = ErrorOfStart(report[0]);
  close(report[0]);
  return outcome;
}

// Every signal is blocked in the new process: no handler of this one may run in there.
pid_t ForkWithoutSignals() {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t process = fork();
  const int error = errno;
  if (process != 0) pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return process;
}

// The new process is a child of the starter's parent, which sees it end.
pid_t ForkBesideStarter() {
  return static_cast<pid_t>(syscall(SYS_clone, CLONE_PARENT | SIGCHLD, 0UL, 0UL, 0UL, 0UL));
}

void Reap(pid_t process) {
  Retry([process] { return waitpid(process, nullptr, 0); });
}

// In the new process, which holds a copy of everything that the program has. The standard output
// and error stay for what it starts.
[[noreturn]] void Serve(int program) {
  setsid();
  // Not the program's name: a kill by the program's name must not hit its starter.
  prctl(PR_SET_NAME, "starter");
  dup2(program, STDIN_FILENO);
  close_range(3, ~0u, 0);
  for (Outcome answer;;) {
    if (send(STDIN_FILENO, &answer, sizeof answer, MSG_NOSIGNAL) != sizeof answer) _exit(0);
    const ssize_t size = recv(STDIN_FILENO, received.data(), received.size(), 0);
    if (size <= 0) _exit(0);
    answer = Launch(ForkBesideStarter, received.data(), static_cast<std::size_t>(size));
  }
}

// This process's end of the starter.
class Starter {
 public:
  static Starter& Instance() {
    // Threads that nobody joins may ask until the very end of the process.
    static Starter* const instance = new Starter;
    return *instance;
  }

  // Back when the new process has let go of this one's descriptors.
  void Begin() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (std::exchange(begun, true)) return;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) return;
    Descriptor programEnds(ends[0]);
    socket = Descriptor(ends[1]);
    process = ForkWithoutSignals();
    if (process == 0) {
      socket.Close();
      Serve(programEnds.Get());
    }
    programEnds.Close();
    Outcome ready;
    if (process > 0 && !Hear(&ready)) End();
  }

  // False without a starter.
  bool Ask(const std::string& request, Outcome* outcome) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (process <= 0) return false;
    if (send(socket.Get(), request.data(), request.size(), MSG_NOSIGNAL) >= 0 && Hear(outcome))
      return true;
    End();
    return false;
  }

 private:
  bool Hear(Outcome* outcome) {
    const auto hear = [&] { return recv(socket.Get(), outcome, sizeof *outcome, 0); };
    return Retry(hear) == sizeof *outcome;
  }

  void End() {
    socket = Descriptor();
    kill(process, SIGKILL);
    Reap(std::exchange(process, -1));
  }

  std::mutex mutex;  // guards what follows
  bool begun = false;
  pid_t process = -1;
  Descriptor socket;
};

}  // namespace

int StartProgram(const ProgramStart& start, pid_t* process) {
  std::error_code gone;
  std::string request = std::filesystem::current_path(gone).string();
  const auto add = [&request](const std::string& text) { request.append(1, '\0') += text; };
  add(start.folder);
  add(start.program);
  for (const std::string& word : start.words) add(word);
  request += '\0';
  if (request.size() > kMostBytes) return E2BIG;
  Outcome outcome;
  if (!Starter::Instance().Ask(request, &outcome))
    outcome = Launch(ForkWithoutSignals, request.data(), request.size());
  if (outcome.error != 0 && outcome.process > 0) Reap(outcome.process);
  *process = outcome.process;
  return outcome.error;
}

void KeepLimitsForPrograms() { Starter::Instance().Begin(); }

}  // namespace platform
