#include "app/platform/windows/windows_clock.h"

#include "app/platform/windows/held_wakes.h"
#include "app/platform/windows/win32.h"

namespace platform {

void WindowsClock::Sleep(std::uint32_t ms) {
  HeldWakes::LetOut();
  ::Sleep(ms);
}

std::uint32_t WindowsClock::GetTickCount() { return ::GetTickCount(); }

}  // namespace platform
