// Draws on a window or a control of it.
#pragma once

#include "app/platform/windows/ui/pictures.h"
#include "app/platform/windows/ui/system.h"

namespace platform::ui {

class WindowsCanvas final : public Canvas {
 public:
  // All borrowed. The font is that of `window`.
  WindowsCanvas(HDC canvas, HWND window, const Icons& icons)
      : canvas(canvas), window(window), icons(icons) {}

  void FillRect(const Rect& rect, Colour colour) override;
  void FrameRect(const Rect& rect, Colour colour) override;
  void Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) override;
  void DrawFocusRect(const Rect& rect) override;
  void TextInRect(const Rect& rect, const std::string& text, Colour colour,
                  std::uint32_t align) override;
  void DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) override;
  void EraseBackground(const Rect& rect) override;
  void DrawSizeGrip(const Rect& rect) override;

 private:
  const HDC canvas;
  const HWND window;
  const Icons& icons;
};

}  // namespace platform::ui
