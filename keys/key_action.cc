#include "keys/key_action.h"

#include <new>

namespace kelvaro {

KeyAction::KeyAction() { actionType = kKeyAction; }

void KeyAction::Clear() {
  steps.Clear();
  actionFlags = 0;
}

void KeyAction::CopyFrom(const KeyAction& other) {
  CopyType(other);
  steps = other.steps;
  actionFlags = other.actionFlags;
}

InputAction* KeyAction::Clone() const {
  auto* copy = new (std::nothrow) KeyAction;
  if (copy) copy->CopyFrom(*this);
  return copy;
}

}  // namespace kelvaro
