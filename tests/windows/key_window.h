// A window that has the focus and notes the keys and the clicks that it gets.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/patience.h"

// Last.
#include "tests/windows/focused_window.h"

namespace kelvaro::tests {

inline std::vector<std::string> got;

class KeyWindow : public ::testing::Test {
 protected:
  KeyWindow() { got.clear(); }
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

  const HWND window = ShowFocusedWindow([](const std::string& text) { got.push_back(text); });
};

}  // namespace kelvaro::tests
