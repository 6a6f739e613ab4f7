#include "app/platform/qt/drop_list.h"

#include <QKeyEvent>
#include <QProxyStyle>
#include <QSignalBlocker>

#include "app/platform/qt/scrolled_past.h"
#include "app/platform/qt/text.h"

namespace platform::qt {
namespace {

constexpr int kRowsInView = 20;

// Some styles unfold a list like a menu, all of its rows at once, over the whole screen.
class ListStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
  }
};

bool IsHeading(const std::string& row) { return row.starts_with("== ") && row.ends_with(" =="); }

}  // namespace

class DropList::Widget : public ScrolledPast<QComboBox> {
 public:
  explicit Widget(QWidget* parent) : ScrolledPast(parent) {
    auto* const unfolded = new ListStyle;
    unfolded->setParent(this);
    setStyle(unfolded);
  }

 protected:
  // It would look for a row that begins with the letter.
  void keyPressEvent(QKeyEvent* event) override {
    if (event->modifiers() & Qt::ControlModifier) {
      event->ignore();
    } else {
      QComboBox::keyPressEvent(event);
    }
  }
};

DropList::DropList(ControlHost& host, const ControlTemplate& from)
    : Control(host, from), box(new Widget(host.Inside())), rows((from.style & kStyleSorted) != 0) {
  box->setFocusPolicy(Qt::StrongFocus);
  box->setMaxVisibleItems(kRowsInView);
  QFont bold;
  bold.setBold(true);
  for (const char* row : from.rows) {
    const std::int32_t index = Add(row);
    if (IsHeading(row)) box->setItemData(index, bold, Qt::FontRole);
  }
  connect(box, &QComboBox::activated, this, [this](int row) {
    // Also when the same row is chosen again: selecting its device or profile may have failed
    // before.
    rows.Select(row);
    this->host.Notify(id, Notice::SelectionChanged, row);
  });
  Adopt(box);
}

std::int32_t DropList::Add(const std::string& row) {
  const std::int32_t index = rows.Add(row);
  const QSignalBlocker quiet(box);
  box->insertItem(index, Shown(row));
  Sync();
  return index;
}

bool DropList::Delete(std::int32_t row) {
  if (!rows.Delete(row)) return false;
  const QSignalBlocker quiet(box);
  box->removeItem(row);
  Sync();
  return true;
}

void DropList::Reset() {
  rows.Clear();
  const QSignalBlocker quiet(box);
  box->clear();
}

bool DropList::Select(std::int32_t row) {
  rows.Select(row);
  Sync();
  return rows.Selected() == row;
}

// The box chooses a row by itself when it gets its first one, or loses the chosen one.
void DropList::Sync() {
  const QSignalBlocker quiet(box);
  box->setCurrentIndex(rows.Selected());
  box->update();
}

}  // namespace platform::qt
