#include "app/platform/qt/tab_control.h"

#include <QImage>
#include <QPainter>
#include <QResizeEvent>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>
#include <algorithm>

#include "app/platform/qt/qt_canvas.h"
#include "app/platform/qt/text.h"

namespace platform::qt {

namespace {

// Leaves tips to the window, which shows them in its own width and for its own time.
class TabBar : public QTabBar {
 public:
  using QTabBar::QTabBar;

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return QTabBar::event(event);
    event->ignore();
    return false;
  }
};

}  // namespace

class TabControl::Frame : public QWidget {
 public:
  explicit Frame(QWidget* parent) : QWidget(parent), bar(new TabBar(this)) {
    bar->setExpanding(false);
    bar->setDrawBase(false);
    // A click takes the focus from a control that may be on the page that goes.
    bar->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(bar);
  }

  void PlaceBar() {
    const QSize wanted = bar->sizeHint();
    bar->setGeometry(0, 0, std::min(wanted.width(), width()), wanted.height());
    update();
  }

  QTabBar* const bar;

 protected:
  void resizeEvent(QResizeEvent*) override { PlaceBar(); }
  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame option;
    option.initFrom(this);
    option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    option.shape = QTabBar::RoundedNorth;
    option.tabBarSize = bar->sizeHint();
    option.tabBarRect = bar->geometry();
    option.selectedTabRect = bar->tabRect(bar->currentIndex());
    const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, this);
    option.rect = rect().adjusted(0, bar->height() - overlap, 0, 0);
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, option);
  }
  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange) PlaceBar();
    QWidget::changeEvent(event);
  }
};

TabControl::TabControl(ControlHost& host, const ControlTemplate& from)
    : Control(host, from), frame(new Frame(host.Inside())), bar(frame->bar) {
  connect(bar, &QTabBar::currentChanged, this, [this](int tab) {
    frame->update();
    // Behind a box that comes first, the window still shows the tab before.
    Select(selected);
    if (!this->host.GoesOn()) return;
    Select(tab);
    this->host.Notify(id, Notice::SelectionChanged, tab);
  });
  const std::pair<QKeyCombination, int> steps[] = {
      {Qt::CTRL | Qt::Key_Tab, 1},
      {Qt::CTRL | Qt::Key_PageDown, 1},
      {Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, -1},
      {Qt::CTRL | Qt::Key_PageUp, -1},
  };
  for (const auto& [key, by] : steps) {
    auto* const shortcut = new QShortcut(key, frame);
    connect(shortcut, &QShortcut::activated, this, [this, by = by] { Step(by); });
  }
  Adopt(frame);
}

// As a click on the next tab does, with the focus first.
void TabControl::Step(int by) {
  if (bar->count() == 0) return;
  bar->setFocus(Qt::ShortcutFocusReason);
  bar->setCurrentIndex((bar->currentIndex() + by + bar->count()) % bar->count());
}

std::int32_t TabControl::Insert(const std::string& text) {
  const QSignalBlocker quiet(bar);
  const int tab = bar->addTab(Shown(text));
  selected = bar->currentIndex();
  frame->PlaceBar();
  return tab;
}

bool TabControl::TabRect(std::int32_t tab, Rect* rect) const {
  if (tab < 0 || tab >= bar->count()) return false;
  *rect = RectOf(bar->tabRect(tab).translated(bar->pos()));
  return true;
}

QColor TabControl::PageColour(const QPalette& colours) const {
  constexpr int kSide = 40;  // more than any frame is wide
  QImage page(kSide, kSide, QImage::Format_RGB32);
  page.fill(colours.color(QPalette::Window));
  QPainter painter(&page);
  QStyleOptionTabWidgetFrame option;
  option.initFrom(frame);
  option.palette = colours;
  option.rect = page.rect();
  option.shape = QTabBar::RoundedNorth;
  frame->style()->drawPrimitive(QStyle::PE_FrameTabWidget, &option, &painter, frame);
  return page.pixelColor(kSide / 2, kSide / 2);
}

bool TabControl::Select(std::int32_t tab) {
  if (tab < 0 || tab >= bar->count()) return false;
  const QSignalBlocker quiet(bar);
  bar->setCurrentIndex(tab);
  selected = tab;
  frame->update();
  return true;
}

}  // namespace platform::qt
