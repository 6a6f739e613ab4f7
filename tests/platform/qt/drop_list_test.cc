#include "app/platform/qt/drop_list.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QScrollBar>
#include <QWheelEvent>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class DropListTest : public QtTest {
 protected:
  QComboBox* Box(std::uint32_t id) const { return static_cast<QComboBox*>(Widget(id)); }
  std::vector<std::string> Rows(std::uint32_t id) const {
    std::vector<std::string> rows;
    for (int row = 0; row < controls().ComboGetCount(Window(), id); ++row) {
      rows.push_back(controls().ComboGetLBText(Window(), id, row));
      EXPECT_EQ(Box(id)->itemText(row).toStdString(), rows.back());
    }
    return rows;
  }
};

WINDOW_TEST(DropListTest, HasTheTemplatesRowsAndNoneChosen) {
  EXPECT_EQ(Rows(kDropList), (std::vector<std::string>{"one", "two", "three"}));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1);
  EXPECT_EQ(Box(kDropList)->currentIndex(), -1);
}

// A long list would lie over what it is to help with.
WINDOW_TEST(DropListTest, UnfoldsTwentyRowsAndAScrollBar) {
  for (int row = 0; row < 132; ++row) {
    controls().ComboAddString(Window(), kDropList, "row " + std::to_string(row));
  }
  QComboBox* const box = Box(kDropList);
  box->showPopup();
  Settle();
  const QAbstractItemView& rows = *box->view();
  EXPECT_EQ(rows.viewport()->height() / rows.sizeHintForRow(0), 20);
  EXPECT_TRUE(rows.verticalScrollBar()->isVisible());
  EXPECT_GT(rows.verticalScrollBar()->maximum(), 0);
  box->hidePopup();
}

constexpr const char* kHeaded[] = {"== Keys ==", "a", "b"};
constexpr ControlTemplate kHeadedControls[] = {
    {ControlKind::DropList, kDropList, "", 5, 5, 60, 12, 0, "Keys", kHeaded}};
constexpr DialogTemplate kHeadedList = {4, "Headed", 100, 40, 0, kHeadedControls};

TEST_F(DropListTest, HeadingsOfTheTemplateAreBold) {
  const auto isBold = [&](int row) {
    return qvariant_cast<QFont>(Box(kDropList)->itemData(row, Qt::FontRole)).bold();
  };
  Run(kHeadedList, [&] {
    EXPECT_TRUE(isBold(0));
    EXPECT_FALSE(isBold(1));
    EXPECT_EQ(controls().ComboAddString(Window(), kDropList, "== mine =="), 3);
    EXPECT_FALSE(isBold(3)) << "a name that a person chose";
  });
}

WINDOW_TEST(DropListTest, RowsOfASortedListStandInOrderWhateverTheCase) {
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "b"), 0);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "A"), 0);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "C"), 2);
  EXPECT_EQ(controls().ComboAddString(Window(), kSortedList, "B"), 2);  // behind its equal
  EXPECT_EQ(Rows(kSortedList), (std::vector<std::string>{"A", "b", "B", "C"}));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), -1);
}

WINDOW_TEST(DropListTest, TheChoiceStaysWithItsRow) {
  controls().ComboAddString(Window(), kSortedList, "m");
  EXPECT_TRUE(controls().ComboSetCurSel(Window(), kSortedList, 0));
  controls().ComboAddString(Window(), kSortedList, "a");
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), 1);
  EXPECT_EQ(Box(kSortedList)->currentText(), QStringLiteral("m"));
  EXPECT_TRUE(controls().ComboDeleteString(Window(), kSortedList, 0));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), 0);
  EXPECT_TRUE(controls().ComboDeleteString(Window(), kSortedList, 0));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kSortedList), -1);
  EXPECT_FALSE(controls().ComboDeleteString(Window(), kSortedList, 0));
}

WINDOW_TEST(DropListTest, DeletingTheChosenRowChoosesNoOther) {
  controls().ComboSetCurSel(Window(), kDropList, 1);
  controls().ComboDeleteString(Window(), kDropList, 1);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1);
  EXPECT_EQ(Box(kDropList)->currentIndex(), -1);
}

WINDOW_TEST(DropListTest, SearchesFoldTheCaseOfAsciiLetters) {
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "T"), 1);
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "THR"), 2);
  EXPECT_EQ(controls().ComboFindString(Window(), kDropList, "x"), -1);
  EXPECT_EQ(controls().ComboFindStringExact(Window(), kDropList, "TWO"), 1);
  EXPECT_EQ(controls().ComboFindStringExact(Window(), kDropList, "tw"), -1);
}

WINDOW_TEST(DropListTest, EachRowCarriesANumber) {
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 1), 0);
  EXPECT_TRUE(controls().ComboSetItemData(Window(), kDropList, 1, -2));
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 1), -2);
  EXPECT_FALSE(controls().ComboSetItemData(Window(), kDropList, 3, 1));
  EXPECT_EQ(controls().ComboGetItemData(Window(), kDropList, 3), -1);
}

WINDOW_TEST(DropListTest, TheChosenRowChosenAgainIsNews) {
  controls().ComboSetCurSel(Window(), kDropList, 1);
  controls().SetControlFocus(Window(), kDropList);
  Box(kDropList)->showPopup();
  QTest::keyClick(Box(kDropList)->view(), Qt::Key_Return);
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"114 selection changed 1"}));
  Box(kDropList)->showPopup();
  QTest::keyClick(Box(kDropList)->view(), Qt::Key_Escape);
  EXPECT_TRUE(recorder.lines.empty()) << "nothing was chosen";
}

WINDOW_TEST(DropListTest, OnlyAChoiceOfThePersonIsNews) {
  EXPECT_FALSE(controls().ComboSetCurSel(Window(), kDropList, 3));
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), -1)
      << "none, as the published one has it";
  EXPECT_TRUE(controls().ComboSetCurSel(Window(), kDropList, 1));
  EXPECT_TRUE(recorder.lines.empty());
  controls().SetControlFocus(Window(), kDropList);
  QTest::keyClick(Widget(kDropList), Qt::Key_Down);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), 2);
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"114 selection changed 2"}));
  QTest::keyClick(Widget(kDropList), Qt::Key_Down);
  EXPECT_TRUE(recorder.lines.empty()) << "it was the last one";
}

WINDOW_TEST(DropListTest, TheWheelPassesAListThatDoesntHaveTheFocus) {
  controls().ComboSetCurSel(Window(), kDropList, 0);
  controls().SetControlFocus(Window(), kNameEdit);
  QWheelEvent wheel({5, 5}, Widget(kDropList)->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(Widget(kDropList), &wheel);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), 0);
}

WINDOW_TEST(DropListTest, ResettingEmptiesIt) {
  EXPECT_TRUE(controls().ComboResetContent(Window(), kDropList));
  EXPECT_EQ(controls().ComboGetCount(Window(), kDropList), 0);
  EXPECT_EQ(controls().ComboGetLBText(Window(), kDropList, 0), "");
}

WINDOW_TEST(DropListTest, AnotherKindIsNoDropList) {
  EXPECT_EQ(controls().ComboAddString(Window(), kList, "x"), -1);
  EXPECT_EQ(controls().ComboGetCount(Window(), kList), -1);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kList), -1);
  EXPECT_FALSE(controls().ComboSetCurSel(Window(), kList, 0));
  EXPECT_EQ(controls().ComboFindString(Window(), kList, ""), -1);
  EXPECT_FALSE(controls().ComboResetContent(Window(), kList));
  EXPECT_FALSE(controls().SetDlgItemTextA(Window(), kDropList, "x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kDropList), "");
}

}  // namespace
}  // namespace platform::qt
