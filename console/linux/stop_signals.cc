#include "console/stop_signals.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace kelvaro::console {

StopSignals::StopSignals() {
  sigemptyset(&stopping);
  sigaddset(&stopping, SIGINT);
  sigaddset(&stopping, SIGTERM);
  sigaddset(&stopping, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &stopping, &before);
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, &pipeBefore);
}

StopSignals::~StopSignals() {
  sigaction(SIGPIPE, &pipeBefore, nullptr);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void StopSignals::Ask() { kill(getpid(), SIGTERM); }

void StopSignals::EndAsAsked() const {
  if (came == 0) return;
  signal(came, SIG_DFL);  // ignored where a script runs this in the background
  raise(came);
}

bool StopSignals::Wait(std::optional<std::uint64_t> ms) {
  if (came != 0) return true;
  using Clock = std::chrono::steady_clock;
  // Longer than anybody waits, and far from any overflow.
  constexpr std::uint64_t kAges = 1000ull * 60 * 60 * 24 * 365 * 100;
  const std::uint64_t wait = ms && *ms < kAges ? *ms : kAges;
  const auto end = Clock::now() + std::chrono::milliseconds(wait);
  for (;;) {
    const auto left = std::max(end - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    timespec timeout{};
    timeout.tv_sec = static_cast<time_t>(seconds.count());
    timeout.tv_nsec = static_cast<long>(std::chrono::nanoseconds(left - seconds).count());
    const int signal = sigtimedwait(&stopping, nullptr, &timeout);
    if (signal > 0) {
      came = signal;
      pthread_sigmask(SIG_UNBLOCK, &stopping, nullptr);
      return true;
    }
    if (errno != EINTR && (errno != EAGAIN || left == Clock::duration::zero())) return false;
  }
}

}  // namespace kelvaro::console
