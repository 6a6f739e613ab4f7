#include "app/platform/qt/tool_tips.h"

#include <QTextLayout>
#include <QToolTip>

#include "app/platform/qt/text.h"

namespace platform::qt {

const std::string* ToolTips::TabText(std::uint32_t control, std::int32_t tab) const {
  for (const TabTool& tool : tabTools) {
    if (tool.control == control && tool.tab == tab) return &tool.text;
  }
  return nullptr;
}

void ToolTips::Show(const QString& text, QPoint screen, QWidget* over, const QRect& place) const {
  const QString shown = text.isEmpty() || !active ? QString() : AsRichText(Wrapped(text, width));
  QToolTip::showText(screen, shown, over, place, time);
}

QString Wrapped(const QString& text, int width) {
  if (width <= 0) return text;
  QStringList lines;
  for (const QString& paragraph : text.split(u'\n')) {
    QTextLayout layout(paragraph, QToolTip::font());
    layout.beginLayout();
    bool any = false;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      lines += paragraph.mid(line.textStart(), line.textLength()).trimmed();
      any = true;
    }
    layout.endLayout();
    if (!any) lines += QString();
  }
  return lines.join(u'\n');
}

}  // namespace platform::qt
