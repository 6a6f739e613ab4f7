// While one of these lives, the events that its thread signals wait for its end, or for that of the
// one around it. A thread that is woken on the spot runs before its waker has let go of a lock,
// finds it taken and sleeps again. A wait of the waker's own lets the wakes out first.
#pragma once

#include "app/platform/windows/win32.h"

namespace platform {

class HeldWakes {
 public:
  HeldWakes();
  ~HeldWakes();
  HeldWakes(const HeldWakes&) = delete;
  HeldWakes& operator=(const HeldWakes&) = delete;

  // Keeps it for the end. False where nothing is held back, or no more fits: the caller signals it.
  static bool Keep(HANDLE event);
  static void LetOut();
};

}  // namespace platform
