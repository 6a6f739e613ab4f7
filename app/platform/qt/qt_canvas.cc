#include "app/platform/qt/qt_canvas.h"

#include <QStyle>
#include <QStyleOptionSizeGrip>

#include "app/platform/qt/colours.h"
#include "app/platform/qt/text.h"

namespace platform::qt {

QRect RectOf(const Rect& rect) { return QRect(rect.left, rect.top, rect.Width(), rect.Height()); }

Rect RectOf(const QRect& rect) {
  return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

void QtCanvas::FillRect(const Rect& rect, Colour colour) {
  painter.fillRect(RectOf(rect), ColourOf(colour));
}

void QtCanvas::FrameRect(const Rect& rect, Colour colour) { Draw3dRect(rect, colour, colour); }

// As filled strips, which have no half pixels at any scale.
void QtCanvas::Draw3dRect(const Rect& rect, Colour leftTop, Colour rightBottom) {
  const int width = rect.Width();
  const int height = rect.Height();
  painter.fillRect(rect.left, rect.top, width - 1, 1, ColourOf(leftTop));
  painter.fillRect(rect.left, rect.top, 1, height - 1, ColourOf(leftTop));
  painter.fillRect(rect.right - 1, rect.top, 1, height, ColourOf(rightBottom));
  painter.fillRect(rect.left, rect.bottom - 1, width, 1, ColourOf(rightBottom));
}

void QtCanvas::DrawFocusRect(const Rect& rect) {
  painter.save();
  QPen pen(widget.palette().color(QPalette::ButtonText), 1, Qt::DotLine);
  painter.setPen(pen);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(RectOf(rect).adjusted(0, 0, -1, -1));
  painter.restore();
}

void QtCanvas::TextInRect(const Rect& rect, const std::string& text, Colour colour,
                          std::uint32_t align) {
  Qt::Alignment alignment = align & DT_CENTER  ? Qt::AlignHCenter
                            : align & DT_RIGHT ? Qt::AlignRight
                                               : Qt::AlignLeft;
  alignment |= align & DT_VCENTER  ? Qt::AlignVCenter
               : align & DT_BOTTOM ? Qt::AlignBottom
                                   : Qt::AlignTop;
  painter.save();
  painter.setFont(widget.font());
  painter.setPen(ColourOf(colour));
  painter.drawText(RectOf(rect), static_cast<int>(alignment) | Qt::TextSingleLine, Shown(text));
  painter.restore();
}

void QtCanvas::DrawIcon(std::int32_t x, std::int32_t y, IconHandle icon) {
  icons.Find(icon).paint(&painter, QRect(x, y, kIconSize, kIconSize));
}

void QtCanvas::EraseBackground(const Rect& rect) {
  painter.fillRect(RectOf(rect), widget.palette().brush(QPalette::Window));
}

void QtCanvas::DrawSizeGrip(const Rect& rect) {
  QStyleOptionSizeGrip option;
  option.initFrom(&widget);
  option.rect = RectOf(rect);
  option.corner = Qt::BottomRightCorner;
  painter.save();
  painter.setClipRect(option.rect);
  widget.style()->drawControl(QStyle::CE_SizeGrip, &option, &painter, &widget);
  painter.restore();
}

}  // namespace platform::qt
