// Prints sent events as they come, whole lines from any thread, each flushed.
#pragma once

#include <mutex>
#include <ostream>

#include "console/event_line.h"

namespace kelvaro::console {

class EventPrinter {
 public:
  EventPrinter(std::ostream& out, bool json) : out(out), json(json) {}

  void Print(const SentEvent& event);

 private:
  std::mutex lineMutex;
  std::ostream& out;  // guarded by lineMutex
  const bool json;
};

}  // namespace kelvaro::console
