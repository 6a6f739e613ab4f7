// Watches which window is in front, as the desktop tells it, and which Kelvaros run. It sleeps
// until the desktop or one of them has news.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "console/follow/follow_rules.h"

namespace kelvaro::console {

class FrontWatch {
 public:
  // Called one at a time, on a thread of the watch.
  struct Listener {
    // Nothing for no window. At first, and each time that it is another or its texts are.
    std::function<void(const std::optional<FrontWindow>& window)> window;
    // One that runs may have come, or gone by itself.
    std::function<void()> instances;
    // The desktop has ended, or can't be understood any more; nothing is called after it.
    std::function<void(const std::string& error)> ended;
  };

  FrontWatch();
  ~FrontWatch();
  FrontWatch(const FrontWatch&) = delete;
  FrontWatch& operator=(const FrontWatch&) = delete;

  // False, with *error saying what is missing and what to do, where no desktop tells it.
  bool Open(std::string* error);
  // After Open: who tells, such as "sway", and what stays untold, if anything, as a sentence.
  std::string Teller() const;
  std::string Lack() const;

  // After Open.
  void Begin(Listener listener);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts;
};

}  // namespace kelvaro::console
