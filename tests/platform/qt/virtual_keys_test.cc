#include "app/platform/qt/virtual_keys.h"

#include <gtest/gtest.h>

namespace platform::qt {
namespace {

TEST(VirtualKeys, AreThePublishedOnes) {
  struct Case {
    int key;
    std::int32_t code;
  };
  const Case cases[] = {
      {Qt::Key_A, 0x41},      {Qt::Key_Z, 0x5A},        {Qt::Key_0, 0x30},
      {Qt::Key_F1, 0x70},     {Qt::Key_F12, 0x7B},      {Qt::Key_Backspace, 0x08},
      {Qt::Key_Tab, 0x09},    {Qt::Key_Backtab, 0x09},  {Qt::Key_Return, 0x0D},
      {Qt::Key_Enter, 0x0D},  {Qt::Key_Shift, 0x10},    {Qt::Key_Control, 0x11},
      {Qt::Key_Alt, 0x12},    {Qt::Key_Escape, 0x1B},   {Qt::Key_Space, 0x20},
      {Qt::Key_PageUp, 0x21}, {Qt::Key_PageDown, 0x22}, {Qt::Key_End, 0x23},
      {Qt::Key_Home, 0x24},   {Qt::Key_Left, 0x25},     {Qt::Key_Up, 0x26},
      {Qt::Key_Right, 0x27},  {Qt::Key_Down, 0x28},     {Qt::Key_Insert, 0x2D},
      {Qt::Key_Delete, 0x2E}, {Qt::Key_ydiaeresis, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(VirtualKey(QKeyEvent(QEvent::KeyPress, c.key, Qt::NoModifier)), c.code) << c.key;
  }
}

}  // namespace
}  // namespace platform::qt
