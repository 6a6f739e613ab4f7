#include "app/platform/qt/list_view.h"

#include <QHeaderView>
#include <QTreeView>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class ListViewTest : public QtTest {
 protected:
  QTreeView* List(std::uint32_t id = kList) const { return static_cast<QTreeView*>(Widget(id)); }
  QPoint RowPoint(int row, std::uint32_t id = kList) const {
    return List(id)->visualRect(List(id)->model()->index(row, 0)).center();
  }
};

IN_WINDOW(ListViewTest, AnEmptyOneShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kSingleList)->grab().toImage();
  Widget(kSingleList)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kSingleList)->grab().toImage(), without);
}

IN_WINDOW(ListViewTest, ShowsItsTextsAndItsColumnsInTheirOrder) {
  AddColumns();
  AddRows(2);
  controls().ListSetItemText(Window(), kList, 1, 2, "jump \xFC");
  EXPECT_EQ(List()->model()->index(1, 2).data().toString(), QStringLiteral("jump ü"));
  controls().ListSetColumnOrder(Window(), kList, {2, 0, 1});
  EXPECT_EQ(List()->header()->logicalIndex(0), 2);
  EXPECT_EQ(List()->header()->logicalIndex(2), 1);
}

TEST_F(ListViewTest, ANewWidthIsToldBeforeAndAfterThePersonSetsIt) {
  Numbers seen;
  recorder.onNotice = [&](std::uint32_t, Notice, std::int32_t column) {
    seen.push_back(controls().ListGetColumnWidth(Window(), kList, column));
  };
  Run([&] {
    AddColumns();
    seen.clear();
    recorder.lines.clear();
    List()->header()->resizeSection(1, 90);  // as a drag of its divider does
    EXPECT_EQ(recorder.TakeLines(), (Lines{"116 header changing 1", "116 header changed 1"}));
    EXPECT_EQ(seen, (Numbers{50, 90}));
    EXPECT_EQ(controls().ListGetColumnWidth(Window(), kList, 1), 90);
  });
}

TEST_F(ListViewTest, ADroppedHeaderCountsOnlyAfterItsNotice) {
  Numbers during;
  recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
    if (notice == Notice::HeaderDragEnded) controls().ListGetColumnOrder(Window(), kList, &during);
  };
  Run([&] {
    AddColumns();
    recorder.lines.clear();
    List()->header()->moveSection(0, 2);  // as the end of a drag does
    EXPECT_EQ(recorder.LinesOf(kList), (Lines{"116 header drag ended"}));
    EXPECT_EQ(during, (Numbers{0, 1, 2}));
    Numbers after;
    controls().ListGetColumnOrder(Window(), kList, &after);
    EXPECT_EQ(after, (Numbers{1, 2, 0}));
  });
}

IN_WINDOW(ListViewTest, ADragOfAHeaderWithTheMouseMovesItsColumn) {
  AddColumns();
  QHeaderView* const header = List()->header();
  QWidget* const area = header->viewport();
  const int y = header->height() / 2;
  QTest::mousePress(area, Qt::LeftButton, {}, QPoint(20, y));
  for (int x = 20; x <= 145; x += 5) QTest::mouseMove(area, QPoint(x, y));
  QTest::mouseRelease(area, Qt::LeftButton, {}, QPoint(145, y));
  Numbers order;
  controls().ListGetColumnOrder(Window(), kList, &order);
  EXPECT_EQ(order, (Numbers{1, 0, 2}));
}

IN_WINDOW(ListViewTest, TheScrollBarsRoomIsNotTheColumns) {
  const int width = controls().ListGetClientWidth(Window(), kList);
  EXPECT_LT(width, List()->width());
  EXPECT_EQ(List()->viewport()->width(), width) << "or a column without a heading stands there";
  AddColumns();
  AddRows(100);
  Settle();
  EXPECT_EQ(controls().ListGetClientWidth(Window(), kList), width)
      << "whether there is a bar or not";
  EXPECT_LE(width, List()->viewport()->width());
}

IN_WINDOW(ListViewTest, ADoubleClickOnADividerFitsTheContents) {
  AddColumns();
  AddRows(2);
  controls().ListSetItemText(Window(), kList, 0, 1, "<Ctrl><Shift>abc<P:500>def");
  QHeaderView* const header = List()->header();
  const QPoint divider(header->sectionViewportPosition(1) + header->sectionSize(1) - 1,
                       header->height() / 2);
  QTest::mouseMove(header->viewport(), divider);
  QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, divider);
  const int text = List()->fontMetrics().horizontalAdvance(
      QString::fromStdString(controls().ListGetItemText(Window(), kList, 0, 1)));
  EXPECT_GE(controls().ListGetColumnWidth(Window(), kList, 1), text);
  EXPECT_LE(controls().ListGetColumnWidth(Window(), kList, 1), text + 20);
  EXPECT_EQ(controls().ListGetColumnWidth(Window(), kList, 0), 100);
}

IN_WINDOW(ListViewTest, ARowThatIsToBeSeenIsScrolledTo) {
  AddColumns();
  AddRows(100);
  EXPECT_TRUE(controls().ListEnsureVisible(Window(), kList, 80));
  EXPECT_TRUE(List()->viewport()->rect().contains(RowPoint(80)));
}

TEST_F(ListViewTest, PaintingIsTold) {
  int painted = 0;
  recorder.onNotice = [&](std::uint32_t id, Notice notice, std::int32_t) {
    if (id == kList && notice == Notice::Painted) ++painted;
  };
  Run([&] {
    painted = 0;
    controls().InvalidateControl(Window(), kList);
    List()->viewport()->update();
    Settle();
    EXPECT_GE(painted, 1);
  });
}

IN_WINDOW(ListViewTest, LinesStandBetweenTheCells) {
  AddColumns();
  AddRows(2);
  Settle();
  const QImage image = List()->viewport()->grab().toImage();
  const QColor paper = image.pixelColor(95, image.height() - 2);
  EXPECT_NE(image.pixelColor(99, RowPoint(0).y()), paper) << "behind the first column";
  const int bottom = List()->visualRect(List()->model()->index(0, 0)).bottom();
  EXPECT_NE(image.pixelColor(60, bottom), paper) << "below the first row";
}

}  // namespace
}  // namespace platform::qt
