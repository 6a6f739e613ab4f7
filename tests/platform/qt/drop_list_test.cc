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
  // What the person sees of it.
  Lines Shown(std::uint32_t id) const {
    Lines rows;
    for (int row = 0; row < Box(id)->count(); ++row)
      rows.push_back(Box(id)->itemText(row).toStdString());
    return rows;
  }
};

IN_WINDOW(DropListTest, TheBoxShowsTheRowsAndTheChosenOne) {
  EXPECT_EQ(Shown(kDropList), (Lines{"one", "two", "three"}));
  EXPECT_EQ(Box(kDropList)->currentIndex(), -1);
  controls().ComboSetCurSel(Window(), kDropList, 1);
  EXPECT_EQ(Box(kDropList)->currentIndex(), 1);
  controls().ComboDeleteString(Window(), kDropList, 1);
  EXPECT_EQ(Shown(kDropList), (Lines{"one", "three"}));
  EXPECT_EQ(Box(kDropList)->currentIndex(), -1);

  controls().ComboAddString(Window(), kSortedList, "m");
  EXPECT_EQ(Box(kSortedList)->currentIndex(), -1) << "its first row";
  controls().ComboSetCurSel(Window(), kSortedList, 0);
  controls().ComboAddString(Window(), kSortedList, "a");
  EXPECT_EQ(Shown(kSortedList), (Lines{"a", "m"}));
  EXPECT_EQ(Box(kSortedList)->currentText(), QStringLiteral("m"));
  controls().ComboResetContent(Window(), kSortedList);
  EXPECT_EQ(Shown(kSortedList), Lines());
}

// A long list would lie over what it is to help with.
IN_WINDOW(DropListTest, UnfoldsTwentyRowsAndAScrollBar) {
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

IN_WINDOW(DropListTest, TheChosenRowChosenAgainIsNews) {
  controls().ComboSetCurSel(Window(), kDropList, 1);
  controls().SetControlFocus(Window(), kDropList);
  Box(kDropList)->showPopup();
  QTest::keyClick(Box(kDropList)->view(), Qt::Key_Return);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"114 selection changed 1"}));
  Box(kDropList)->showPopup();
  QTest::keyClick(Box(kDropList)->view(), Qt::Key_Escape);
  EXPECT_TRUE(recorder.lines.empty()) << "nothing was chosen";
}

IN_WINDOW(DropListTest, TheWheelPassesAListThatDoesntHaveTheFocus) {
  controls().ComboSetCurSel(Window(), kDropList, 0);
  controls().SetControlFocus(Window(), kNameEdit);
  QWheelEvent wheel({5, 5}, Widget(kDropList)->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {},
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(Widget(kDropList), &wheel);
  EXPECT_EQ(controls().ComboGetCurSel(Window(), kDropList), 0);
}

}  // namespace
}  // namespace platform::qt
