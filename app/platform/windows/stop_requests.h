// Ctrl-C, Ctrl-Break and a closed console, taken as a wish to end: code that waits here learns of
// it, and can let go of keys first. A second one ends the program at once. One object at a time.
#pragma once

#include <cstdint>
#include <optional>

#include "app/platform/threads.h"

namespace platform {

class StopRequests {
 public:
  StopRequests();
  ~StopRequests();
  StopRequests(const StopRequests&) = delete;
  StopRequests& operator=(const StopRequests&) = delete;

  // Waits `ms`, or for as long as it takes. Whether a request ended the wait, or had come before; 0
  // only looks.
  bool Wait(std::optional<std::uint64_t> ms);

  // Ends the program as Ctrl-C would have done. Returns where none came.
  void EndAsAsked() const;

  // Does what Ctrl-C does, from any thread, while an object of this lives.
  static void Ask();
};

}  // namespace platform
