#include "app/platform/linux/xtest_guard.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <utility>

namespace platform {
namespace {

// A server that doesn't answer by then keeps its keys.
constexpr unsigned kConnectWithinSeconds = 10;

bool IsDown(const std::atomic<bool>& held) { return held; }

void LetGo(const char* displayName, const XTestGuard::Held& held) {
  if (std::none_of(held.keys.begin(), held.keys.end(), IsDown) &&
      std::none_of(held.buttons.begin(), held.buttons.end(), IsDown))
    return;
  // The library answers trouble with an exit, which would run the program's clean-up in here.
  XSetIOErrorHandler([](Display*) -> int { _exit(1); });
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  alarm(kConnectWithinSeconds);
  Display* const display = XOpenDisplay(displayName);
  if (!display) return;
  for (unsigned keycode = 0; keycode < held.keys.size(); ++keycode)
    if (held.keys[keycode]) XTestFakeKeyEvent(display, keycode, False, CurrentTime);
  for (unsigned button = 0; button < held.buttons.size(); ++button)
    if (held.buttons[button]) XTestFakeButtonEvent(display, button, False, CurrentTime);
  XCloseDisplay(display);  // waits until the server has done it all
}

bool Tell(int fd) { return write(fd, "", 1) == 1; }

// False when the other end is gone.
bool AwaitByte(int fd) {
  char byte;
  return Retry([&] { return read(fd, &byte, 1); }) == 1;
}

// In the new process, which holds a copy of everything that the program has.
[[noreturn]] void Watch(int programEnds, const char* displayName, const XTestGuard::Held& held) {
  setsid();
  for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) ::signal(signal, SIG_IGN);
  ::signal(SIGALRM, SIG_DFL);
  sigset_t alarmAlone;
  sigemptyset(&alarmAlone);
  sigaddset(&alarmAlone, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarmAlone, nullptr);
  // Not the program's name: a kill by the program's name must not hit its guard.
  prctl(PR_SET_NAME, "key-guard");
  dup2(programEnds, STDIN_FILENO);
  close_range(STDOUT_FILENO, ~0u, 0);
  for (const int fd : {STDOUT_FILENO, STDERR_FILENO})
    if (open("/dev/null", O_RDWR) != fd) _exit(1);
  if (chdir("/") != 0 || !Tell(STDIN_FILENO)) _exit(1);

  AwaitByte(STDIN_FILENO);
  LetGo(displayName, held);
  _exit(0);
}

}  // namespace

std::unique_ptr<XTestGuard> XTestGuard::Start(const std::string& display, int* errorCode) {
  const auto fail = [errorCode] {
    *errorCode = errno;
    return nullptr;
  };
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return fail();
  Descriptor programEnds(ends[0]);
  Descriptor alive(ends[1]);
  void* const memory =
      mmap(nullptr, sizeof(Held), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return fail();
  Held* const held = new (memory) Held{};
  const pid_t process = fork();
  if (process == 0) Watch(programEnds.Get(), display.c_str(), *held);
  if (process < 0) {
    fail();
    munmap(memory, sizeof(Held));
    return nullptr;
  }
  programEnds.Close();
  std::unique_ptr<XTestGuard> guard(new XTestGuard(held, std::move(alive), process));
  // Until then a signal to the program's process group would hit the guard too.
  if (AwaitByte(guard->alive.Get())) return guard;
  *errorCode = ECHILD;
  return nullptr;
}

XTestGuard::XTestGuard(Held* held, Descriptor alive, pid_t process)
    : held(held), alive(std::move(alive)), process(process) {}

XTestGuard::~XTestGuard() {
  alive.Close();
  Retry([this] { return waitpid(process, nullptr, 0); });
  munmap(held, sizeof(Held));
}

}  // namespace platform
