#include "engine/precedence.h"

namespace kelvaro {

bool IsContained(const Control& inner, const Control& outer) {
  if ((inner.buttonMask & ~outer.buttonMask) != 0) return false;
  for (const TriggerItem& item : inner.triggerItems) {
    if (!outer.UsesInput(item)) return false;
  }
  return true;
}

bool IsMouseInput(const MouseSettings& mouse, const TriggerItem& input) {
  for (const MouseRoleInput& role : kMouseRoles) {
    if (role.axis && static_cast<TriggerItem>(mouse.*role.axis).SameInput(input)) return true;
  }
  return false;
}

bool UsesMouseInput(const MouseSettings& mouse, const Control& control) {
  for (const TriggerItem& item : control.triggerItems) {
    if (IsMouseInput(mouse, item)) return true;
  }
  return false;
}

}  // namespace kelvaro
