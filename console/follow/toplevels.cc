#include "console/follow/toplevels.h"

#include <algorithm>

namespace kelvaro::console {

void Toplevels::SetTitle(Key window, const std::string& title) {
  told[window].window.title = title;
}

void Toplevels::SetKind(Key window, const std::string& kind) { told[window].window.kind = kind; }

void Toplevels::SetActive(Key window, bool isActive) { told[window].active = isActive; }

void Toplevels::Settle(Key window) {
  const Told& now = told[window];
  settled[window] = now.window;
  if (!now.active) {
    std::erase(active, window);
  } else if (std::find(active.begin(), active.end(), window) == active.end()) {
    active.push_back(window);
  }
}

void Toplevels::Remove(Key window) {
  told.erase(window);
  settled.erase(window);
  std::erase(active, window);
}

std::optional<FrontWindow> Toplevels::Front() const {
  if (active.empty()) return std::nullopt;
  return settled.at(active.back());
}

}  // namespace kelvaro::console
