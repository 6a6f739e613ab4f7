// An action that counts its kind: how many were made and destroyed since the last Begin.
#pragma once

#include <functional>

#include "engine/control.h"

namespace kelvaro {

class CountingAction : public InputAction {
 public:
  explicit CountingAction(int text = 0) : text(text) {
    actionType = kKeyAction;
    ++made;
  }
  ~CountingAction() override {
    ++destroyed;
    if (onDestroy) onDestroy();
  }
  CountingAction(const CountingAction&) = delete;
  CountingAction& operator=(const CountingAction&) = delete;

  InputAction* Clone() const override { return new CountingAction(text); }

  static void Begin() { made = destroyed = 0; }
  static int Living() { return made - destroyed; }

  const int text;  // stands for what the action would replay
  std::function<void()> onDestroy;

  static inline int made = 0;
  static inline int destroyed = 0;
};

}  // namespace kelvaro
