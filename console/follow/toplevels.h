// The windows of a desktop that tells each by itself, a piece at a time, and which of them is in
// front.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "console/follow/follow_rules.h"

namespace kelvaro::console {

// On one thread. What is told of a window counts from Settle on.
class Toplevels {
 public:
  using Key = const void*;  // whatever it is known by

  void SetTitle(Key window, const std::string& title);
  void SetKind(Key window, const std::string& kind);
  void SetActive(Key window, bool active);
  void Settle(Key window);
  // It is closed.
  void Remove(Key window);

  // Of those that are active the one that became it last; nothing where none is.
  std::optional<FrontWindow> Front() const;

 private:
  struct Told {
    FrontWindow window;
    bool active = false;
  };
  std::map<Key, Told> told;
  std::map<Key, FrontWindow> settled;
  std::vector<Key> active;  // the last one is in front
};

}  // namespace kelvaro::console
