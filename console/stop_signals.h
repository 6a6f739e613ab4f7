// Ctrl-C, a polite kill and a closed terminal, taken as a wish to end: code that waits here learns
// of it, and can let go of keys first. A second one ends the program at once. A pipe that nobody
// reads any more does not end the program; the write fails.
#pragma once

#ifdef _WIN32

#include "app/platform/windows/stop_requests.h"

namespace kelvaro::console {
using StopSignals = platform::StopRequests;
}

#else

#include <signal.h>

#include <cstdint>
#include <optional>

namespace kelvaro::console {

class StopSignals {
 public:
  // Holds the signals back from this thread and all that it makes from here on.
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // Waits `ms`, or for as long as it takes. Whether a signal ended the wait, or had come before; 0
  // only looks.
  bool Wait(std::optional<std::uint64_t> ms);

  // Ends the program as the signal that came would have done, so that a shell sees it. Returns
  // where none came.
  void EndAsAsked() const;

  // Does what Ctrl-C does, from any thread, while an object of this lives.
  static void Ask();

 private:
  int came = 0;
  sigset_t stopping;
  sigset_t before;
  struct sigaction pipeBefore;
};

}  // namespace kelvaro::console

#endif
