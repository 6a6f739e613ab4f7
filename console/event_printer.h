// Prints sent events as they come, whole lines from any thread, each flushed. What reads them may
// go away, which is then told once. A release of a key that was never pressed comes of a long pause
// in a key text; for people the line says so.
#pragma once

#include <cstdint>
#include <mutex>
#include <ostream>
#include <set>
#include <utility>

#include "console/event_line.h"

namespace kelvaro::console {

class EventPrinter {
 public:
  // whenBroken, unless null, is called on the thread of the first event that can't be written.
  EventPrinter(std::ostream& out, bool json, void (*whenBroken)() = nullptr)
      : out(out), json(json), whenBroken(whenBroken) {}

  void Print(const SentEvent& event);

 private:
  std::mutex lineMutex;
  std::ostream& out;                                        // guarded by lineMutex
  std::set<std::pair<std::uint8_t, std::uint8_t>> pressed;  // ever, as vk and scan; guarded, too
  const bool json;
  void (*const whenBroken)();
};

}  // namespace kelvaro::console
