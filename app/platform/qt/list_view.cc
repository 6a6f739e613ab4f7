#include "app/platform/qt/list_view.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <algorithm>

#include "app/platform/qt/focus.h"
#include "app/platform/qt/text.h"
#include "app/platform/qt/virtual_keys.h"

namespace platform::qt {
namespace {

// A column that was dragged thinner couldn't be found again.
constexpr int kThinnestColumn = 8;
// Around the letters of a row, so that the line below it leaves them whole.
constexpr int kRowMargin = 4;

}  // namespace

class ListView::Rows : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  struct Row {
    std::vector<std::string> cells;
    std::uint32_t data = 0;
  };

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
  }
  int columnCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(headings.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    const Row& row = rows[static_cast<std::size_t>(index.row())];
    return Shown(row.cells[static_cast<std::size_t>(index.column())]);
  }
  QVariant headerData(int section, Qt::Orientation, int role) const override {
    if (section < 0 || section >= columnCount()) return {};
    if (role == Qt::DisplayRole) return Shown(headings[static_cast<std::size_t>(section)]);
    if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    return {};
  }

  void AddColumn(const std::string& heading) {
    beginInsertColumns({}, columnCount(), columnCount());
    headings.push_back(heading);
    for (Row& row : rows) row.cells.emplace_back();
    endInsertColumns();
  }
  void AddRow(std::uint32_t data) {
    beginInsertRows({}, rowCount(), rowCount());
    rows.push_back({std::vector<std::string>(headings.size()), data});
    endInsertRows();
  }
  void Clear() {
    if (rows.empty()) return;
    beginRemoveRows({}, 0, rowCount() - 1);
    rows.clear();
    endRemoveRows();
  }
  bool Has(std::int32_t row, std::int32_t column) const {
    return row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
  }
  const Row& At(std::int32_t row) const { return rows[static_cast<std::size_t>(row)]; }
  void SetCell(std::int32_t row, std::int32_t column, const std::string& cell) {
    rows[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(column)] = cell;
    const QModelIndex where = index(row, column);
    Q_EMIT dataChanged(where, where);
  }

 private:
  std::vector<std::string> headings;
  std::vector<Row> rows;
};

// As wide as its text, for code that asks how wide a column has to be.
class CellDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& cell) const override {
    return {QStyledItemDelegate::sizeHint(option, cell).width(),
            option.fontMetrics.height() + kRowMargin};
  }
};

class ListView::Widget : public QTreeView {
 public:
  Widget(ControlHost& host, std::uint32_t id) : QTreeView(host.Inside()), host(host), id(id) {
    setItemDelegate(new CellDelegate(this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setIndentation(0);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    // Room that is kept for a bar that isn't there looks like one more column.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    QHeaderView* const headers = header();
    headers->setStretchLastSection(false);
    headers->setSectionsMovable(true);
    headers->setFirstSectionMovable(true);
    headers->setCascadingSectionResizes(false);
    headers->setMinimumSectionSize(kThinnestColumn);
    headers->setSectionsClickable(false);
  }

  // The text of the cell at a point of the list, and its visible place, if part of it is cut off.
  QString CutText(const QPoint& at, QRect* place) const {
    const QModelIndex cell = indexAt(viewport()->mapFrom(this, at));
    if (!cell.isValid()) return {};
    const QRect seen = visualRect(cell).intersected(viewport()->rect());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    if (itemDelegateForIndex(cell)->sizeHint(option, cell).width() <= seen.width()) return {};
    *place = seen.translated(viewport()->pos());
    return cell.data().toString();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_F1) return event->ignore();
    host.Notify(id, Notice::KeyDown, VirtualKey(*event));
    const bool ofTheDialog = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                             event->key() == Qt::Key_Escape;
    // The list itself would copy one cell; copying is the program's task.
    if (ofTheDialog) {
      event->ignore();
    } else if (!event->matches(QKeySequence::Copy)) {
      QTreeView::keyPressEvent(event);
    }
  }

  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return;
    host.Notify(id, Notice::DoubleClicked, indexAt(event->position().toPoint()).row());
  }

  void paintEvent(QPaintEvent* event) override {
    QTreeView::paintEvent(event);
    PaintGrid();
    if (hasFocus()) {
      QPainter painter(viewport());
      DrawFocusFrame(painter, *this, viewport()->rect());
    }
    host.Notify(id, Notice::Painted);
  }
  // The frame of the focus doesn't scroll.
  void scrollContentsBy(int dx, int dy) override {
    QTreeView::scrollContentsBy(dx, dy);
    viewport()->update();
  }

 private:
  void PaintGrid() {
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    option.initFrom(this);
    const int hint = style()->styleHint(QStyle::SH_Table_GridLineColor, &option, this);
    painter.setPen(QColor::fromRgba(static_cast<QRgb>(hint)));
    const int height = model()->rowCount() > 0 ? rowHeight(model()->index(0, 0)) : 0;
    int bottom = 0;
    if (height > 0) {
      const int last = model()->rowCount() - 1;
      const int first = visualRect(model()->index(0, 0)).top();
      const int rowsBottom = visualRect(model()->index(last, 0)).bottom();
      bottom = std::min(rowsBottom, viewport()->height());
      const int skipped = first < 0 ? -first / height : 0;
      for (int y = first + (skipped + 1) * height - 1; y <= bottom; y += height) {
        painter.drawLine(0, y, viewport()->width(), y);
      }
    }
    for (int column = 0; column < header()->count(); ++column) {
      const int x = header()->sectionViewportPosition(column) + header()->sectionSize(column) - 1;
      painter.drawLine(x, 0, x, bottom);
    }
  }

  ControlHost& host;
  const std::uint32_t id;
};

ListView::ListView(ControlHost& host, const ControlTemplate& from)
    : Control(host, from), rows(new Rows), list(new Widget(host, from.id)) {
  rows->setParent(list);
  list->setModel(rows);
  list->setSelectionMode(from.style & kStyleMultiSelect ? QAbstractItemView::ExtendedSelection
                                                        : QAbstractItemView::SingleSelection);
  connect(list->header(), &QHeaderView::sectionResized, this, &ListView::WidthChanged);
  connect(list->header(), &QHeaderView::sectionMoved, this, [this] { ColumnMoved(); });
  Adopt(list);
}

bool ListView::IsColumn(std::int32_t column) const {
  return column >= 0 && column < static_cast<std::int32_t>(widths.size());
}

std::int32_t ListView::InsertColumn(const std::string& heading, std::int32_t width) {
  const auto column = static_cast<std::int32_t>(widths.size());
  QHeaderView* const header = list->header();
  rows->AddColumn(heading);
  header->resizeSection(column, std::max(0, width));
  widths.push_back(std::max(0, width));
  order.push_back(column);
  return column;
}

std::int32_t ListView::ColumnWidth(std::int32_t column) const {
  return IsColumn(column) ? widths[static_cast<std::size_t>(column)] : -1;
}

bool ListView::SetColumnWidth(std::int32_t column, std::int32_t width) {
  if (!IsColumn(column) || width < 0) return false;
  list->header()->resizeSection(column, width);
  return true;
}

// The headers have the new width already; the program is told of it in two steps.
void ListView::WidthChanged(int column, int before, int now) {
  if (!IsColumn(column) || before == now) return;
  host.Notify(id, Notice::HeaderItemChanging, column);
  // The program may have set another width in the notice.
  widths[static_cast<std::size_t>(column)] = list->header()->sectionSize(column);
  host.Notify(id, Notice::HeaderItemChanged, column);
}

bool ListView::SetOrder(const std::vector<std::int32_t>& wanted) {
  std::vector<std::int32_t> sorted = wanted;
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (sorted[i] != static_cast<std::int32_t>(i)) return false;
  }
  if (wanted.size() != widths.size()) return false;
  settingOrder = true;
  QHeaderView* const header = list->header();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    header->moveSection(header->visualIndex(wanted[i]), static_cast<int>(i));
  }
  settingOrder = false;
  order = wanted;
  return true;
}

void ListView::ColumnMoved() {
  if (settingOrder) return;
  host.Notify(id, Notice::HeaderDragEnded);
  for (std::size_t i = 0; i < order.size(); ++i) {
    order[i] = list->header()->logicalIndex(static_cast<int>(i));
  }
}

// Computed, since the list has no inside before it is first seen.
std::int32_t ListView::ClientWidth() const {
  const QScrollBar* const bar = list->verticalScrollBar();
  const bool floats = list->style()->styleHint(QStyle::SH_ScrollBar_Transient, nullptr, bar);
  const int room =
      floats ? 0 : list->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, bar);
  return std::max(0, list->width() - 2 * list->frameWidth() - room);
}

QString ListView::CutText(const QPoint& at, QRect* place) const { return list->CutText(at, place); }

std::int32_t ListView::InsertItem(std::uint32_t data) {
  rows->AddRow(data);
  return rows->rowCount() - 1;
}

void ListView::DeleteAllItems() { rows->Clear(); }

std::int32_t ListView::ItemCount() const { return rows->rowCount(); }

bool ListView::SetItemText(std::int32_t row, std::int32_t column, const std::string& cell) {
  if (!rows->Has(row, column)) return false;
  rows->SetCell(row, column, cell);
  return true;
}

std::string ListView::ItemText(std::int32_t row, std::int32_t column) const {
  if (!rows->Has(row, column)) return {};
  return rows->At(row).cells[static_cast<std::size_t>(column)];
}

std::uint32_t ListView::ItemData(std::int32_t row) const {
  return rows->Has(row, 0) ? rows->At(row).data : 0;
}

bool ListView::SelectItem(std::int32_t row, bool selected) {
  if (!rows->Has(row, 0)) return false;
  QItemSelectionModel* const selection = list->selectionModel();
  const QModelIndex where = rows->index(row, 0);
  QItemSelectionModel::SelectionFlags how = QItemSelectionModel::Rows;
  if (!selected) {
    how |= QItemSelectionModel::Deselect;
  } else if (style & kStyleMultiSelect) {
    how |= QItemSelectionModel::Select;
  } else {
    how |= QItemSelectionModel::ClearAndSelect;
  }
  selection->select(where, how);
  // Where the arrow keys go on.
  if (selected) selection->setCurrentIndex(where, QItemSelectionModel::NoUpdate);
  return true;
}

std::int32_t ListView::NextSelected(std::int32_t after) const {
  if (rows->columnCount() == 0) return kNoRow;
  const QItemSelectionModel* const selection = list->selectionModel();
  for (int row = std::max(after, -1) + 1; row < rows->rowCount(); ++row) {
    if (selection->isSelected(rows->index(row, 0))) return row;
  }
  return kNoRow;
}

bool ListView::EnsureVisible(std::int32_t row) {
  if (!rows->Has(row, 0)) return false;
  const int left = list->horizontalScrollBar()->value();
  list->scrollTo(rows->index(row, 0));
  list->horizontalScrollBar()->setValue(left);
  return true;
}

}  // namespace platform::qt
