// Windows' own headers for what is seen, and what all of this folder needs to go between them and
// the seam. Handles of windows are the system's own.
#pragma once

#include "app/platform/windows/win32.h"

// Behind it.
#include <commctrl.h>
#include <shellapi.h>

namespace platform::ui {

inline HWND SystemWindow(WindowHandle window) { return reinterpret_cast<HWND>(window); }
inline WindowHandle SeamWindow(HWND window) { return reinterpret_cast<WindowHandle>(window); }

inline RECT RectOf(const Rect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }
inline Rect RectOf(const RECT& rect) {
  return {static_cast<std::int32_t>(rect.left), static_cast<std::int32_t>(rect.top),
          static_cast<std::int32_t>(rect.right), static_cast<std::int32_t>(rect.bottom)};
}

// To one control, whose messages take their numbers and pointers in two words.
template <typename First = int, typename Second = int>
LRESULT Ask(HWND window, UINT message, First first = {}, Second second = {}) {
  WPARAM w = 0;
  LPARAM l = 0;
  if constexpr (std::is_pointer_v<First>) {
    w = reinterpret_cast<WPARAM>(first);
  } else {
    w = static_cast<WPARAM>(first);
  }
  if constexpr (std::is_pointer_v<Second>) {
    l = reinterpret_cast<LPARAM>(second);
  } else {
    l = static_cast<LPARAM>(second);
  }
  return SendMessageW(window, message, w, l);
}

}  // namespace platform::ui
