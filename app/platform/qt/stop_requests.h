// Ends the program as its close box does when somebody else wants it ended: by SIGTERM, SIGINT or
// SIGHUP, or at the end of the session. One at a time; user interface's thread.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <csignal>
#include <memory>

namespace platform::qt {

class QtDesktop;

class StopRequests : public QObject {
 public:
  explicit StopRequests(QtDesktop& desktop);
  ~StopRequests() override;

 private:
  bool TakeSignals();
  bool eventFilter(QObject* object, QEvent* event) override;

  QtDesktop& desktop;
  int pipe[2] = {-1, -1};
  std::unique_ptr<QSocketNotifier> notifier;
  struct sigaction before[3];
};

}  // namespace platform::qt
