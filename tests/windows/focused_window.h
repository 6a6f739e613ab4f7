// A window with the focus, and what it gets there, as text: "down 65 scan 30", "left up", "wheel
// 120". A program has one of them.
#pragma once

#include <functional>
#include <string>

// Last.
#include "app/platform/windows/win32.h"

namespace kelvaro::tests {

using TellText = std::function<void(const std::string& text)>;
inline TellText tellInput;

inline std::string KeyText(const char* what, WPARAM vk, LPARAM how) {
  return std::string(what) + " " + std::to_string(vk) + " scan " +
         std::to_string(how >> 16 & 0xFF) + (how >> 24 & 1 ? " extended" : "");
}

inline LRESULT CALLBACK TakeInput(HWND window, UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_KEYDOWN:
      tellInput(KeyText("down", first, second));
      return 0;
    case WM_KEYUP:
      tellInput(KeyText("up", first, second));
      return 0;
    case WM_LBUTTONDOWN:
      tellInput("left down");
      return 0;
    case WM_LBUTTONUP:
      tellInput("left up");
      return 0;
    case WM_MOUSEWHEEL:
      tellInput("wheel " + std::to_string(static_cast<short>(HIWORD(first))));
      return 0;
    default:
      return DefWindowProcA(window, message, first, second);
  }
}

// In the corner of the desktop, before all others.
inline HWND ShowFocusedWindow(const TellText& tell) {
  tellInput = tell;
  WNDCLASSA kind{};
  kind.lpfnWndProc = TakeInput;
  kind.hInstance = GetModuleHandleA(nullptr);
  kind.lpszClassName = "KelvaroInputWindow";
  RegisterClassA(&kind);
  const HWND window = CreateWindowExA(WS_EX_TOPMOST, kind.lpszClassName, "", WS_POPUP | WS_VISIBLE,
                                      0, 0, 400, 300, nullptr, nullptr, kind.hInstance, nullptr);
  SetForegroundWindow(window);
  SetFocus(window);
  return window;
}

}  // namespace kelvaro::tests
