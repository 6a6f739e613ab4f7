// A window that has the focus and notes the keys and the clicks that it gets.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/patience.h"

// Last.
#include "app/platform/windows/win32.h"

namespace kelvaro::tests {

inline std::vector<std::string> got;

inline std::string KeyText(const char* what, WPARAM vk, LPARAM how) {
  return std::string(what) + " " + std::to_string(vk) + " scan " +
         std::to_string(how >> 16 & 0xFF) + (how >> 24 & 1 ? " extended" : "");
}

inline LRESULT CALLBACK Note(HWND window, UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_KEYDOWN:
      got.push_back(KeyText("down", first, second));
      return 0;
    case WM_KEYUP:
      got.push_back(KeyText("up", first, second));
      return 0;
    case WM_LBUTTONDOWN:
      got.emplace_back("left down");
      return 0;
    case WM_LBUTTONUP:
      got.emplace_back("left up");
      return 0;
    case WM_MOUSEWHEEL:
      got.push_back("wheel " + std::to_string(static_cast<short>(HIWORD(first))));
      return 0;
    default:
      return DefWindowProcA(window, message, first, second);
  }
}

class KeyWindow : public ::testing::Test {
 protected:
  KeyWindow() {
    got.clear();
    WNDCLASSA kind{};
    kind.lpfnWndProc = Note;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.lpszClassName = "KelvaroInputWindow";
    RegisterClassA(&kind);
    window = CreateWindowExA(WS_EX_TOPMOST, kind.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0,
                             400, 300, nullptr, nullptr, kind.hInstance, nullptr);
    SetForegroundWindow(window);
    SetFocus(window);
  }
  ~KeyWindow() override { DestroyWindow(window); }

  // Takes in what has come.
  static void Look() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
  }
  void ExpectGot(const std::vector<std::string>& expected) {
    Eventually([&] {
      Look();
      return got.size() >= expected.size();
    });
    EXPECT_EQ(got, expected);
  }

  HWND window = nullptr;
};

}  // namespace kelvaro::tests
