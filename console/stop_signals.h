// Ctrl-C, a polite kill and a closed terminal, taken as a wish to end: whoever waits here is told,
// and can let go of keys first. A second one ends the program at once.
#pragma once

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

  // Waits `ms`, or for as long as it takes. Whether a signal ended the wait.
  bool Wait(std::optional<std::uint64_t> ms);

 private:
  sigset_t stopping;
  sigset_t before;
};

}  // namespace kelvaro::console
