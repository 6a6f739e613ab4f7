#include "app/platform/qt/drop_list.h"

#include <QKeyEvent>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <algorithm>

#include "app/platform/file_pattern.h"
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
    : Control(host, from), box(new Widget(host.Inside())) {
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
    selected = row;
    this->host.Notify(id, Notice::SelectionChanged, row);
  });
  Adopt(box);
}

std::int32_t DropList::Add(const std::string& row) {
  auto place = rows.end();
  if (style & kStyleSorted) {
    place = std::upper_bound(rows.begin(), rows.end(), row, [](const auto& text, const Row& other) {
      return Folded(text) < Folded(other.text);
    });
  }
  const auto index = static_cast<std::int32_t>(place - rows.begin());
  rows.insert(place, Row{row, 0});
  if (selected >= index) ++selected;
  const QSignalBlocker quiet(box);
  box->insertItem(index, Shown(row));
  Sync();
  return index;
}

bool DropList::Delete(std::int32_t row) {
  if (!IsRow(row)) return false;
  rows.erase(rows.begin() + row);
  if (selected == row) {
    selected = kNoRow;
  } else if (selected > row) {
    --selected;
  }
  const QSignalBlocker quiet(box);
  box->removeItem(row);
  Sync();
  return true;
}

void DropList::Reset() {
  rows.clear();
  selected = kNoRow;
  const QSignalBlocker quiet(box);
  box->clear();
}

std::string DropList::RowText(std::int32_t row) const {
  return IsRow(row) ? rows[static_cast<std::size_t>(row)].text : std::string();
}

std::int32_t DropList::FindPrefix(const std::string& prefix) const {
  const std::string wanted = Folded(prefix);
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) {
    return Folded(row.text).starts_with(wanted);
  });
  return found == rows.end() ? kNoRow : static_cast<std::int32_t>(found - rows.begin());
}

std::int32_t DropList::FindExact(const std::string& text) const {
  const std::string wanted = Folded(text);
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [&](const Row& row) { return Folded(row.text) == wanted; });
  return found == rows.end() ? kNoRow : static_cast<std::int32_t>(found - rows.begin());
}

bool DropList::Select(std::int32_t row) {
  selected = IsRow(row) ? row : kNoRow;
  Sync();
  return selected == row;
}

bool DropList::SetData(std::int32_t row, std::int32_t data) {
  if (!IsRow(row)) return false;
  rows[static_cast<std::size_t>(row)].data = data;
  return true;
}

std::int32_t DropList::Data(std::int32_t row) const {
  return IsRow(row) ? rows[static_cast<std::size_t>(row)].data : -1;
}

// The box chooses a row by itself when it gets its first one, or loses the chosen one.
void DropList::Sync() {
  const QSignalBlocker quiet(box);
  box->setCurrentIndex(selected);
  box->update();
}

}  // namespace platform::qt
