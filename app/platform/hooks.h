// Procedures that are told of windows that are about to be minimised.
#pragma once

#include <utility>
#include <vector>

#include "app/platform/desktop.h"

namespace platform {

class Hooks {
 public:
  HookHandle Add(HookProc procedure);
  bool Remove(HookHandle hook);
  // The one that was there before `hook`; 0 when there is none.
  std::intptr_t CallNext(HookHandle hook, std::int32_t code, std::uintptr_t wParam,
                         std::intptr_t lParam) const;
  void TellMinimising(WindowHandle window) const;

 private:
  std::vector<std::pair<HookHandle, HookProc>> hooks;  // the newest last
  HookHandle last = 0;
};

}  // namespace platform
