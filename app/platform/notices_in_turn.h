// Notices that the program is told of later, in the order in which they came: for those that
// implement platform::Desktop.
#pragma once

#include <cstdint>
#include <deque>
#include <utility>

#include "app/platform/desktop.h"

namespace platform {

class NoticesInTurn {
 public:
  void Add(std::uint32_t id, Notice notice) { waiting.emplace_back(id, notice); }

  // Tells all, with those that come meanwhile, until the dialog has `ended`.
  void Tell(WindowListener& listener, const bool& ended) {
    while (!waiting.empty() && !ended) {
      const auto [id, notice] = waiting.front();
      waiting.pop_front();
      listener.OnNotice(id, notice, 0);
    }
  }

 private:
  std::deque<std::pair<std::uint32_t, Notice>> waiting;
};

}  // namespace platform
