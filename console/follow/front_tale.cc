#include "console/follow/front_tale.h"

namespace kelvaro::console {
namespace {

// On the way from one window to another there may be a moment without any, which would let go of
// what is held.
constexpr std::uint32_t kMomentWithout = 100;  // ms

}  // namespace

void FrontTale::See(const std::optional<FrontWindow>& window) {
  without = !window;
  if (window) Once(window);
}

std::optional<std::uint32_t> FrontTale::Wait() const {
  return without ? std::optional(kMomentWithout) : std::nullopt;
}

void FrontTale::Passed() {
  if (!without) return;
  without = false;
  Once(std::nullopt);
}

void FrontTale::Once(const std::optional<FrontWindow>& window) {
  if (told && *told == window) return;
  told = window;
  tell(window);
}

}  // namespace kelvaro::console
