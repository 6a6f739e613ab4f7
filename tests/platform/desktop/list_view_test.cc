#include "desktop_fixture.h"

namespace platform {
namespace {

class ListViewCase : public DesktopTest {
 protected:
  Numbers Selected(std::uint32_t id = kList) const {
    Numbers rows;
    for (int row = controls().ListGetNextSelected(Window(), id, -1); row != kNoRow;
         row = controls().ListGetNextSelected(Window(), id, row)) {
      rows.push_back(row);
    }
    return rows;
  }
};

IN_WINDOW(ListViewCase, WhatIsBeyondItsEndsIsRefused) {
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

IN_WINDOW(ListViewCase, SeveralRowsCanBeSelectedWhereTheTemplateSaysSo) {
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
  for (const std::string& line : recorder.lines)
    EXPECT_EQ(line.find("selection"), std::string::npos) << line;
}

IN_WINDOW(ListViewCase, ArrowKeysGoOnFromTheRowThatTheProgramSelected) {
  AddColumns();
  AddRows(4);
  controls().ListSelectItem(Window(), kList, 1, true);
  controls().SetControlFocus(Window(), kList);
  Key(key::kDown);
  EXPECT_EQ(Selected(), (Numbers{2}));
  EXPECT_EQ(recorder.LinesOf(kList).back(), "116 key down 40");
}

IN_WINDOW(ListViewCase, EnterIsToldAndThenPressesTheDefaultButton) {
  controls().SetControlFocus(Window(), kList);
  Key(key::kReturn);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"116 key down 13", "105 clicked"}));
  Key(key::kEscape);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"116 key down 27", "2 clicked"}));
}

IN_WINDOW(ListViewCase, TheOrderOfColumnsIsAPermutation) {
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
  EXPECT_TRUE(recorder.LinesOf(kList).empty());
}

IN_WINDOW(ListViewCase, AMessageToItselfComesAsANoticeInItsTurn) {
  EXPECT_TRUE(controls().PostControlMessage(Window(), kList, 0x8001));
  EXPECT_FALSE(controls().PostControlMessage(Window(), 999, 0x8001));
  EXPECT_TRUE(recorder.lines.empty());
  Settle();
  EXPECT_EQ(recorder.LinesOf(kList), (Lines{"116 message 32769"}));
}

IN_WINDOW(ListViewCase, HoldsRowsOfTexts) {
  AddColumns();
  AddRows(2);
  EXPECT_EQ(controls().ListGetItemText(Window(), kList, 1, 2), "");
  EXPECT_TRUE(controls().ListSetItemText(Window(), kList, 1, 2, "jump \xFC"));
  EXPECT_EQ(controls().ListGetItemText(Window(), kList, 1, 2), "jump \xFC");
  EXPECT_EQ(controls().ListGetItemData(Window(), kList, 1), 1001u);
  EXPECT_EQ(controls().ListGetItemCount(Window(), kList), 2);
  EXPECT_TRUE(controls().ListDeleteAllItems(Window(), kList));
  EXPECT_EQ(controls().ListGetItemCount(Window(), kList), 0);
}

TEST_F(ListViewCase, ANewWidthIsToldBeforeAndAfterTheProgramSetsIt) {
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
    EXPECT_EQ(controls().ListGetColumnWidth(Window(), kList, 1), 70);
  });
}

}  // namespace
}  // namespace platform
