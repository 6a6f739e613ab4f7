#include "app/platform/windows/ui/windows_canvas.h"

#include "app/platform/windows/ui/text.h"

namespace platform::ui {

void WindowsCanvas::FillRect(const Rect& rect, Colour colour) {
  const RECT place = RectOf(rect);
  const HBRUSH brush = CreateSolidBrush(colour);
  ::FillRect(canvas, &place, brush);
  DeleteObject(brush);
}

void WindowsCanvas::FrameRect(const Rect& rect, Colour colour) { Draw3dRect(rect, colour, colour); }

void WindowsCanvas::Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) {
  FillRect({rect.left, rect.top, rect.right - 1, rect.top + 1}, leftTop);
  FillRect({rect.left, rect.top, rect.left + 1, rect.bottom - 1}, leftTop);
  FillRect({rect.right - 1, rect.top, rect.right, rect.bottom}, rightBottom);
  FillRect({rect.left, rect.bottom - 1, rect.right, rect.bottom}, rightBottom);
}

void WindowsCanvas::DrawFocusRect(const Rect& rect) {
  const RECT place = RectOf(rect);
  SetTextColor(canvas, ::GetSysColor(COLOR_BTNTEXT));
  SetBkColor(canvas, ::GetSysColor(COLOR_BTNFACE));
  ::DrawFocusRect(canvas, &place);
}

void WindowsCanvas::TextInRect(const Rect& rect, const std::string& text, Colour colour,
                               std::uint32_t align) {
  RECT place = RectOf(rect);
  const std::wstring wide = Wide(text);
  const HGDIOBJ before = SelectObject(canvas, reinterpret_cast<HFONT>(Ask(window, WM_GETFONT)));
  SetTextColor(canvas, colour);
  SetBkMode(canvas, TRANSPARENT);
  DrawTextW(canvas, wide.c_str(), static_cast<int>(wide.size()), &place,
            align | DT_SINGLELINE | DT_NOPREFIX);
  SelectObject(canvas, before);
}

void WindowsCanvas::DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) {
  if (const HICON found = icons.Find(icon, true)) ::DrawIcon(canvas, x, y, found);
}

void WindowsCanvas::EraseBackground(const Rect& rect) {
  const RECT place = RectOf(rect);
  ::FillRect(canvas, &place, GetSysColorBrush(COLOR_BTNFACE));
}

void WindowsCanvas::DrawSizeGrip(const Rect& rect) {
  RECT place = RectOf(rect);
  DrawFrameControl(canvas, &place, DFC_SCROLL, DFCS_SCROLLSIZEGRIP);
}

}  // namespace platform::ui
