// A program with a window, as another one on a person's desktop: shown_window TITLE [LATER]. LATER
// is its title from SIGUSR1 on.
#include <sys/signalfd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>
#include <csignal>

int main(int argc, char** argv) {
  sigset_t later;
  sigemptyset(&later);
  sigaddset(&later, SIGUSR1);
  sigprocmask(SIG_BLOCK, &later, nullptr);
  QApplication application(argc, argv);
  QWidget window;
  const auto show = [&](int word) {
    window.setWindowTitle(QString::fromUtf8(argc > word ? argv[word] : ""));
  };
  show(1);
  QSocketNotifier notifier(signalfd(-1, &later, SFD_CLOEXEC), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
    notifier.setEnabled(false);
    show(2);
  });
  window.resize(300, 200);
  window.show();
  return QApplication::exec();
}
