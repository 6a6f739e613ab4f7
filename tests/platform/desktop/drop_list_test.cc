#include "desktop_fixture.h"

namespace platform {
namespace {

class DropListCase : public DesktopTest {
 protected:
  std::vector<std::string> Rows(std::uint32_t id) const {
    std::vector<std::string> rows;
    for (int row = 0; row < controls().ComboGetCount(Window(), id); ++row)
      rows.push_back(controls().ComboGetLBText(Window(), id, row));
    return rows;
  }
};

IN_WINDOW(DropListCase, HasTheTemplatesRowsAndNoneChosen) {
  EXPECT_EQ(Rows(kDropList), (Lines{"one", "two", "three"}));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1);
}

IN_WINDOW(DropListCase, RowsOfASortedListStandInOrderWhateverTheCase) {
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "b"), 0);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "A"), 0);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "C"), 2);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "B"), 2);  // behind its equal
  EXPECT_EQ(Rows(kSortedList), (Lines{"A", "b", "B", "C"}));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), -1);
}

IN_WINDOW(DropListCase, TheChoiceStaysWithItsRow) {
  controls().ComboAddString(Window(), kSortedList, "m");
  EXPECT_TRUE(controls().ComboSetCurSel(Window(), kSortedList, 0));
  controls().ComboAddString(Window(), kSortedList, "a");
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), 1);
  EXPECT_TRUE(controls().ComboDeleteString(Window(), kSortedList, 0));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), 0);
  EXPECT_TRUE(controls().ComboDeleteString(Window(), kSortedList, 0));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), -1);
  EXPECT_FALSE(controls().ComboDeleteString(Window(), kSortedList, 0));
}

IN_WINDOW(DropListCase, DeletingTheChosenRowChoosesNoOther) {
  controls().ComboSetCurSel(Window(), kDropList, 1);
  controls().ComboDeleteString(Window(), kDropList, 1);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1);
}

IN_WINDOW(DropListCase, SearchesFoldTheCaseOfAsciiLetters) {
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "T"), 1);
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "THR"), 2);
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "x"), -1);
  EXPECT_EQ(controls().ComboFindStringExact(Window(), kDropList, "TWO"), 1);
  EXPECT_EQ(controls().ComboFindStringExact(Window(), kDropList, "tw"), -1);
}

IN_WINDOW(DropListCase, EachRowCarriesANumber) {
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 1), 0);
  EXPECT_TRUE(controls().ComboSetItemData(Window(), kDropList, 1, -2));
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 1), -2);
  EXPECT_FALSE(controls().ComboSetItemData(Window(), kDropList, 3, 1));
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 3), -1);
}

IN_WINDOW(DropListCase, OnlyAChoiceOfThePersonIsNews) {
  EXPECT_FALSE(controls().ComboSetCurSel(Window(), kDropList, 3));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1)
      << "none, as the published one has it";
  EXPECT_TRUE(controls().ComboSetCurSel(Window(), kDropList, 1));
  EXPECT_TRUE(recorder.lines.empty());
  controls().SetControlFocus(Window(), kDropList);
  Key(key::kDown);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), 2);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"114 selection changed 2"}));
  Key(key::kDown);
  EXPECT_TRUE(recorder.lines.empty()) << "it was the last one";
}

IN_WINDOW(DropListCase, ResettingEmptiesIt) {
  EXPECT_TRUE(controls().ComboResetContent(Window(), kDropList));
  EXPECT_EQ(controls().ComboGetCount(Window(), kDropList), 0);
  EXPECT_EQ(controls().ComboGetLBText(Window(), kDropList, 0), "");
}

IN_WINDOW(DropListCase, HasNoTextOfItsOwn) {
  EXPECT_FALSE(controls().SetDlgItemTextA(Window(), kDropList, "x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kDropList), "");
}

}  // namespace
}  // namespace platform
