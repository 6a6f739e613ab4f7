// What a program with the focus gets of simulated input.
#include "app/platform/windows/windows_input.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "tests/host/patience.h"

// Last.
#include "app/platform/windows/win32.h"

namespace platform {
namespace {

using kelvaro::tests::Eventually;

std::vector<std::string> got;

std::string KeyText(const char* what, WPARAM vk, LPARAM how) {
  return std::string(what) + " " + std::to_string(vk) + " scan " +
         std::to_string(how >> 16 & 0xFF) + (how >> 24 & 1 ? " extended" : "");
}

LRESULT CALLBACK Note(HWND window, UINT message, WPARAM first, LPARAM second) {
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

class WindowsInputTest : public ::testing::Test {
 protected:
  WindowsInputTest() {
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
  ~WindowsInputTest() override { DestroyWindow(window); }

  void ExpectGot(const std::vector<std::string>& expected) {
    Eventually([&] {
      for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageA(&message);
      return got.size() >= expected.size();
    });
    EXPECT_EQ(got, expected);
  }

  WindowsInput input;
  HWND window = nullptr;
};

TEST_F(WindowsInputTest, KeysArriveInOrderWithTheirScanCodes) {
  ASSERT_TRUE(window);
  input.keybd_event('A', 0x1E, 0, 0);
  input.keybd_event('A', 0x1E, 2, 0);
  input.keybd_event(0x27, 0xCD, 1, 0);  // the right arrow: bit 7 goes out with the scan code
  input.keybd_event(0x27, 0xCD, 1 | 2, 0);
  ExpectGot(
      {"down 65 scan 30", "up 65 scan 30", "down 39 scan 205 extended", "up 39 scan 205 extended"});
}

TEST_F(WindowsInputTest, ThePointerMovesByCountsAndItsButtonsAndWheelArrive) {
  ASSERT_TRUE(window);
  // Without the system's acceleration.
  int before[3] = {};
  int none[3] = {};
  SystemParametersInfoA(SPI_GETMOUSE, 0, before, 0);
  SystemParametersInfoA(SPI_SETMOUSE, 0, none, 0);
  SetCursorPos(100, 100);
  input.mouse_event(1, 12, -7, 0, 0);
  POINT place{};
  EXPECT_TRUE(GetCursorPos(&place));
  EXPECT_EQ(place.x, 112);
  EXPECT_EQ(place.y, 93);
  input.mouse_event(2, 0, 0, 0, 0);
  input.mouse_event(4, 0, 0, 0, 0);
  input.mouse_event(0x800, 0, 0, -120, 0);
  ExpectGot({"left down", "left up", "wheel -120"});
  SystemParametersInfoA(SPI_SETMOUSE, 0, before, 0);
}

}  // namespace
}  // namespace platform
