// What is told of the windows that come to the front: each once, and that there is none once that
// has lasted.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "console/follow/follow_rules.h"

namespace kelvaro::console {

// One thread.
class FrontTale {
 public:
  using Tell = std::function<void(const std::optional<FrontWindow>& window)>;

  explicit FrontTale(Tell tell) : tell(std::move(tell)) {}

  // What is in front now; nothing for no window.
  void See(const std::optional<FrontWindow>& window);

  // How long to wait for what is seen next, and then to call Passed; nothing for as long as it
  // takes.
  std::optional<std::uint32_t> Wait() const;
  void Passed();

 private:
  void Once(const std::optional<FrontWindow>& window);

  const Tell tell;
  std::optional<std::optional<FrontWindow>> told;
  bool without = false;  // there is no window, which isn't told yet
};

}  // namespace kelvaro::console
