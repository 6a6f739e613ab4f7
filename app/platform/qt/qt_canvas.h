// Draws on a widget for the length of one paint event.
#pragma once

#include <QPainter>
#include <QWidget>

#include "app/platform/canvas.h"
#include "app/platform/qt/pictures.h"

namespace platform::qt {

QRect RectOf(const Rect& rect);
Rect RectOf(const QRect& rect);

class QtCanvas final : public Canvas {
 public:
  // All borrowed.
  QtCanvas(QPainter& painter, QWidget& widget, const Icons& icons)
      : painter(painter), widget(widget), icons(icons) {}

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
  QPainter& painter;
  QWidget& widget;
  const Icons& icons;
};

// Of an icon that is drawn, across and down.
constexpr int kIconSize = 32;

}  // namespace platform::qt
