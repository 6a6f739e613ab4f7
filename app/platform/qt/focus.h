// The mark of what has the focus, where the style draws none of its own.
#pragma once

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWidget>

namespace platform::qt {

// In a place of the widget that `painter` paints on, as the style has such marks.
inline void DrawFocus(QPainter& painter, const QWidget& widget, const QRect& place) {
  QStyleOptionFocusRect option;
  option.initFrom(&widget);
  option.rect = place;
  option.backgroundColor = widget.palette().color(widget.backgroundRole());
  widget.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &widget);
}

// Around the inside of an area that scrolls, of which the style marks at most a row, in the colour
// of the selection.
inline void DrawFocusFrame(QPainter& painter, const QWidget& area, const QRect& inside) {
  if (!area.window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
  painter.setPen(QPen(area.palette().color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(inside.adjusted(1, 1, -1, -1));
}

}  // namespace platform::qt
