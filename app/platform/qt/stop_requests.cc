#include "app/platform/qt/stop_requests.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <atomic>

#include "app/platform/qt/qt_desktop.h"

namespace platform::qt {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

std::atomic<int> wakeEnd{-1};

void OnSignal(int) {
  const int saved = errno;
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(wakeEnd, &byte, 1);
  errno = saved;
}

}  // namespace

StopRequests::StopRequests(QtDesktop& desktop) : desktop(desktop) {
  QCoreApplication::instance()->installEventFilter(this);
  if (pipe2(pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier = std::make_unique<QSocketNotifier>(pipe[0], QSocketNotifier::Read);
  connect(notifier.get(), &QSocketNotifier::activated, this, [this] {
    if (TakeSignals()) this->desktop.CloseAll();
  });
  desktop.SetStopLook([this] { return TakeSignals(); });
  wakeEnd = pipe[1];
  struct sigaction action = {};
  action.sa_handler = &OnSignal;
  action.sa_flags = SA_RESTART;
  for (int i = 0; i < 3; ++i) sigaction(kSignals[i], &action, &before[i]);
}

StopRequests::~StopRequests() {
  if (!notifier) return;
  for (int i = 0; i < 3; ++i) sigaction(kSignals[i], &before[i], nullptr);
  wakeEnd = -1;
  desktop.SetStopLook(nullptr);
  notifier.reset();
  close(pipe[0]);
  close(pipe[1]);
}

// Whether there were any.
bool StopRequests::TakeSignals() {
  char bytes[16];
  bool any = false;
  while (read(pipe[0], bytes, sizeof bytes) > 0) any = true;
  return any;
}

// The session asks the application to quit.
bool StopRequests::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::Quit) return false;
  desktop.CloseAll();
  return true;
}

}  // namespace platform::qt
