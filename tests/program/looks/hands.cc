#include "tests/program/looks/hands.h"

#include <QHeaderView>
#include <QTest>

#include "app/platform/controls.h"
#include "app/resources/control_ids.h"

namespace kelvaro::looks {

using namespace main_window;

DialogWindow& Dialog(QWidget& window) { return dynamic_cast<DialogWindow&>(window); }

QWidget* Widget(QWidget& window, std::uint32_t id) {
  return Dialog(window).Find(id)->FocusWidget();
}

void Click(QWidget& window, std::uint32_t id) {
  QWidget* const widget = Widget(window, id);
  QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2));
}

void Type(QWidget& window, std::uint32_t id, const char* text) {
  QWidget* const field = Widget(window, id);
  field->setFocus();
  QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(field, QString::fromLatin1(text));
}

void ShowTab(DialogWindow& window, int tab) {
  platform::Rect rect;
  platform::controls().TabGetItemRect(window.Handle(), kTabControl, tab, &rect);
  QTest::mouseClick(Widget(window, kTabControl), Qt::LeftButton, {},
                    QPoint((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2));
}

void SelectRow(DialogWindow& window, int row) {
  for (int other = 0; other < platform::controls().ListGetItemCount(window.Handle(), kControlList);
       ++other) {
    platform::controls().ListSelectItem(window.Handle(), kControlList, other, other == row);
  }
}

void FitColumns(DialogWindow& window) {
  auto* const header = Widget(window, kControlList)->findChild<QHeaderView*>();
  for (const int column : {0, 1}) {
    const QPoint divider(header->sectionViewportPosition(column) + header->sectionSize(column) - 1,
                         header->height() / 2);
    QTest::mouseMove(header->viewport(), divider);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, divider);
  }
}

}  // namespace kelvaro::looks
