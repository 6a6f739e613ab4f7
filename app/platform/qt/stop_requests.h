// Ends the program as its close box does when somebody else wants it ended: SIGTERM, SIGINT and
// SIGHUP, which the end of a session sends, too. One at a time; user interface's thread.
#pragma once

#include <csignal>
#include <memory>

class QSocketNotifier;

namespace platform::qt {

class QtDesktop;

class StopRequests {
 public:
  explicit StopRequests(QtDesktop& desktop);
  ~StopRequests();
  StopRequests(const StopRequests&) = delete;
  StopRequests& operator=(const StopRequests&) = delete;

 private:
  int pipe[2] = {-1, -1};
  std::unique_ptr<QSocketNotifier> notifier;
  struct sigaction before[3];
};

}  // namespace platform::qt
