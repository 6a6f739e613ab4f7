#include "app/platform/qt/virtual_keys.h"

namespace platform::qt {

std::int32_t VirtualKey(const QKeyEvent& event) {
  const int key = event.key();
  // Letters and digits are their ASCII capitals; a Latin letter of a held Ctrl too.
  if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) return key;
  if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return 0x70 + key - Qt::Key_F1;
  switch (key) {
    case Qt::Key_Backspace:
      return 0x08;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return 0x09;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return 0x0D;
    case Qt::Key_Shift:
      return 0x10;
    case Qt::Key_Control:
      return 0x11;
    case Qt::Key_Alt:
      return 0x12;
    case Qt::Key_Escape:
      return 0x1B;
    case Qt::Key_Space:
      return 0x20;
    case Qt::Key_PageUp:
      return 0x21;
    case Qt::Key_PageDown:
      return 0x22;
    case Qt::Key_End:
      return 0x23;
    case Qt::Key_Home:
      return 0x24;
    case Qt::Key_Left:
      return 0x25;
    case Qt::Key_Up:
      return 0x26;
    case Qt::Key_Right:
      return 0x27;
    case Qt::Key_Down:
      return 0x28;
    case Qt::Key_Insert:
      return 0x2D;
    case Qt::Key_Delete:
      return 0x2E;
    default:
      return 0;
  }
}

}  // namespace platform::qt
