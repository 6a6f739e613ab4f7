// What a program with the focus gets of simulated input.
#include "app/platform/windows/windows_input.h"

#include <gtest/gtest.h>

// Last.
#include "tests/windows/key_window.h"

namespace platform {
namespace {

class WindowsInputTest : public kelvaro::tests::KeyWindow {
 protected:
  WindowsInput input;
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
