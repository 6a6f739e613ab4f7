#include "app/platform/qt/list_view.h"

#include <QHeaderView>
#include <QTreeView>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

using Lines = std::vector<std::string>;
using Numbers = std::vector<std::int32_t>;

class ListViewTest : public QtTest {
 protected:
  QTreeView* List(std::uint32_t id = kList) const { return static_cast<QTreeView*>(Widget(id)); }
  void AddColumns(std::uint32_t id = kList) {
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Trigger", 100), 0);
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Action", 50), 1);
    EXPECT_EQ(controls().ListInsertColumn(Window(), id, "Description", 150), 2);
  }
  void AddRows(int count, std::uint32_t id = kList) {
    for (int row = 0; row < count; ++row) {
      EXPECT_EQ(controls().ListInsertItem(Window(), id, 1000u + static_cast<unsigned>(row)), row);
    }
  }
  Numbers Selected(std::uint32_t id = kList) const {
    Numbers rows;
    for (int row = controls().ListGetNextSelected(Window(), id, -1); row != kNoRow;
         row = controls().ListGetNextSelected(Window(), id, row)) {
      rows.push_back(row);
    }
    return rows;
  }
  QPoint RowPoint(int row, std::uint32_t id = kList) const {
    return List(id)->visualRect(List(id)->model()->index(row, 0)).center();
  }
};

WINDOW_TEST(ListViewTest, AnEmptyOneShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kSingleList)->grab().toImage();
  Widget(kSingleList)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kSingleList)->grab().toImage(), without);
}

WINDOW_TEST(ListViewTest, HoldsRowsOfTexts) {
  AddColumns();
  AddRows(2);
  EXPECT_EQ(controls().ListGetItemText(Window(), kList, 1, 2), "");
  EXPECT_TRUE(controls().ListSetItemText(Window(), kList, 1, 2, "jump \xFC"));
  EXPECT_EQ(controls().ListGetItemText(Window(), kList, 1, 2), "jump \xFC");
  EXPECT_EQ(List()->model()->index(1, 2).data().toString(), QStringLiteral("jump ü"));
  EXPECT_EQ(controls().ListGetItemData(Window(), kList, 1), 1001u);
  EXPECT_EQ(controls().ListGetItemCount(Window(), kList), 2);
  EXPECT_TRUE(controls().ListDeleteAllItems(Window(), kList));
  EXPECT_EQ(controls().ListGetItemCount(Window(), kList), 0);
}

WINDOW_TEST(ListViewTest, WhatIsBeyondItsEndsIsRefused) {
  AddColumns();
  AddRows(1);
  EXPECT_FALSE(controls().ListSetItemText(Window(), kList, 1, 0, "x"));
  EXPECT_FALSE(controls().ListSetItemText(Window(), kList, 0, 3, "x"));
  EXPECT_EQ(controls().ListGetItemText(Window(), kList, -1, 0), "");
  EXPECT_EQ(controls().ListGetItemData(Window(), kList, 1), 0u);
  EXPECT_FALSE(controls().ListSelectItem(Window(), kList, 1, true));
  EXPECT_FALSE(controls().ListEnsureVisible(Window(), kList, 1));
  EXPECT_FALSE(controls().ListSetColumnWidth(Window(), kList, 3, 10));
  EXPECT_EQ(controls().ListGetColumnWidth(Window(), kList, 3), -1);
  EXPECT_EQ(controls().ListInsertColumn(Window(), kDropList, "x", 1), -1);
  EXPECT_EQ(controls().ListGetItemCount(Window(), kDropList), -1);
  EXPECT_EQ(controls().ListGetClientWidth(Window(), kDropList), -1);
  EXPECT_EQ(controls().ComboGetItemData(Window(), kList, 0), -1);
  EXPECT_EQ(controls().SliderGetPos(Window(), kList), -1);
}

WINDOW_TEST(ListViewTest, SeveralRowsCanBeSelectedWhereTheTemplateSaysSo) {
  AddColumns();
  AddRows(4);
  EXPECT_TRUE(controls().ListSelectItem(Window(), kList, 1, true));
  EXPECT_TRUE(controls().ListSelectItem(Window(), kList, 3, true));
  EXPECT_EQ(Selected(), (Numbers{1, 3}));
  EXPECT_TRUE(controls().ListSelectItem(Window(), kList, 1, false));
  EXPECT_EQ(Selected(), (Numbers{3}));

  AddColumns(kSingleList);
  AddRows(4, kSingleList);
  controls().ListSelectItem(Window(), kSingleList, 1, true);
  controls().ListSelectItem(Window(), kSingleList, 3, true);
  EXPECT_EQ(Selected(kSingleList), (Numbers{3}));
  EXPECT_TRUE(recorder.lines.empty() ||
              recorder.lines.front().find("selection") == std::string::npos);
}

WINDOW_TEST(ListViewTest, ArrowKeysGoOnFromTheRowThatTheProgramSelected) {
  AddColumns();
  AddRows(4);
  controls().ListSelectItem(Window(), kList, 1, true);
  controls().SetControlFocus(Window(), kList);
  QTest::keyClick(List(), Qt::Key_Down);
  EXPECT_EQ(Selected(), (Numbers{2}));
  EXPECT_EQ(recorder.LinesOf(kList).back(), "116 key down 40");
}

WINDOW_TEST(ListViewTest, EnterIsToldAndThenPressesTheDefaultButton) {
  controls().SetControlFocus(Window(), kList);
  QTest::keyClick(List(), Qt::Key_Return);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"116 key down 13", "105 clicked"}));
  QTest::keyClick(List(), Qt::Key_Escape);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"116 key down 27", "2 clicked"}));
}

TEST_F(ListViewTest, ANewWidthIsToldBeforeAndAfterThePersonOrTheProgramSetsIt) {
  std::vector<std::int32_t> seen;
  recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t column) {
    if (notice == Notice::HeaderItemChanging || notice == Notice::HeaderItemChanged) {
      seen.push_back(controls().ListGetColumnWidth(Window(), kList, column));
    }
  };
  Run([&] {
    AddColumns();
    seen.clear();
    recorder.lines.clear();
    EXPECT_TRUE(controls().ListSetColumnWidth(Window(), kList, 1, 70));
    EXPECT_EQ(recorder.TakeLines(), (Lines{"116 header changing 1", "116 header changed 1"}));
    EXPECT_EQ(seen, (Numbers{50, 70}));
    List()->header()->resizeSection(1, 90);  // as a drag of its divider does
    EXPECT_EQ(recorder.TakeLines(), (Lines{"116 header changing 1", "116 header changed 1"}));
    EXPECT_EQ(seen, (Numbers{50, 70, 70, 90}));
    EXPECT_EQ(controls().ListGetColumnWidth(Window(), kList, 1), 90);
  });
}

WINDOW_TEST(ListViewTest, TheOrderOfColumnsIsAPermutation) {
  AddColumns();
  Numbers order;
  EXPECT_TRUE(controls().ListGetColumnOrder(Window(), kList, &order));
  EXPECT_EQ(order, (Numbers{0, 1, 2}));
  EXPECT_FALSE(controls().ListSetColumnOrder(Window(), kList, {0, 1}));
  EXPECT_FALSE(controls().ListSetColumnOrder(Window(), kList, {0, 1, 1}));
  EXPECT_FALSE(controls().ListSetColumnOrder(Window(), kList, {1, 2, 3}));
  recorder.lines.clear();
  EXPECT_TRUE(controls().ListSetColumnOrder(Window(), kList, {2, 0, 1}));
  EXPECT_TRUE(controls().ListGetColumnOrder(Window(), kList, &order));
  EXPECT_EQ(order, (Numbers{2, 0, 1}));
  EXPECT_EQ(List()->header()->logicalIndex(0), 2);
  EXPECT_EQ(List()->header()->logicalIndex(2), 1);
  EXPECT_TRUE(recorder.LinesOf(kList).empty());
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

WINDOW_TEST(ListViewTest, ADragOfAHeaderWithTheMouseMovesItsColumn) {
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

WINDOW_TEST(ListViewTest, TheScrollBarsRoomIsNotTheColumns) {
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

WINDOW_TEST(ListViewTest, ADoubleClickOnADividerFitsTheContents) {
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

WINDOW_TEST(ListViewTest, ARowThatIsToBeSeenIsScrolledTo) {
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

WINDOW_TEST(ListViewTest, LinesStandBetweenTheCells) {
  AddColumns();
  AddRows(2);
  Settle();
  const QImage image = List()->viewport()->grab().toImage();
  const QColor paper = image.pixelColor(95, image.height() - 2);
  EXPECT_NE(image.pixelColor(99, RowPoint(0).y()), paper) << "behind the first column";
  const int bottom = List()->visualRect(List()->model()->index(0, 0)).bottom();
  EXPECT_NE(image.pixelColor(60, bottom), paper) << "below the first row";
}

WINDOW_TEST(ListViewTest, AMessageToItselfComesAsANoticeInItsTurn) {
  EXPECT_TRUE(controls().PostControlMessage(Window(), kList, 0x8001));
  EXPECT_FALSE(controls().PostControlMessage(Window(), 999, 0x8001));
  EXPECT_TRUE(recorder.lines.empty());
  Settle();
  EXPECT_EQ(recorder.LinesOf(kList), (Lines{"116 message 32769"}));
}

}  // namespace
}  // namespace platform::qt
