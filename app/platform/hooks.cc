#include "app/platform/hooks.h"

#include <algorithm>

namespace platform {

HookHandle Hooks::Add(HookProc procedure) {
  if (!procedure) return 0;
  hooks.emplace_back(++last, procedure);
  return last;
}

bool Hooks::Remove(HookHandle hook) {
  return std::erase_if(hooks, [&](const auto& entry) { return entry.first == hook; }) > 0;
}

std::intptr_t Hooks::CallNext(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                              std::intptr_t lParam) const {
  const auto older = std::find_if(hooks.rbegin(), hooks.rend(),
                                  [&](const auto& entry) { return entry.first < hook; });
  return older == hooks.rend() ? 0 : older->second(code, wParam, lParam);
}

void Hooks::TellMinimising(WindowHandle window) const {
  if (!hooks.empty()) hooks.back().second(HCBT_MINMAX, window, SW_MINIMIZE);
}

}  // namespace platform
