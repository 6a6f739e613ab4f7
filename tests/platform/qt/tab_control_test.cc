#include "app/platform/qt/tab_control.h"

#include <QHelpEvent>
#include <QTabBar>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class TabControlTest : public QtTest {
 protected:
  int Shown() const { return static_cast<QTabBar*>(Widget(kTabs))->currentIndex(); }
};

IN_WINDOW(TabControlTest, TabsStandBesideOneAnother) {
  AddTabs();
  Rect first;
  Rect second;
  ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 0, &first));
  ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 1, &second));
  EXPECT_GT(first.Height(), 8);
  EXPECT_EQ(first.top, second.top);
  EXPECT_EQ(first.right, second.left);
  EXPECT_FALSE(controls().TabGetItemRect(Window(), kTabs, 2, &second));
  EXPECT_FALSE(controls().TabGetItemRect(Window(), kTabs, -1, &second));
  for (const std::int32_t none : {-1, 2}) {
    EXPECT_FALSE(controls().TabSetCurSel(Window(), kTabs, none));
    EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0) << none;
  }
  EXPECT_FALSE(controls().TabGetItemRect(Window(), kButton, 0, &second));
  EXPECT_EQ(controls().TabGetCurSel(Window(), kButton), -1);
  EXPECT_EQ(controls().TabInsertItem(Window(), kButton, "x"), -1);
}

IN_WINDOW(TabControlTest, CtrlTabGoesRoundAndNowhereWithoutTabs) {
  QTest::keyClick(Dialog(), Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), -1);
  AddTabs();
  QTest::keyClick(Dialog(), Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(Shown(), 1);
  QTest::keyClick(Dialog(), Qt::Key_Tab, Qt::ControlModifier);
  EXPECT_EQ(Shown(), 0);
}

IN_WINDOW(TabControlTest, TheBarHasNoTipsOfItsOwn) {
  AddTabs();
  QHelpEvent tip(QEvent::ToolTip, QPoint(5, 5), QPoint(5, 5));
  EXPECT_FALSE(static_cast<QObject*>(Widget(kTabs))->event(&tip));
  EXPECT_FALSE(tip.isAccepted()) << "the window's tip comes";
}

IN_WINDOW(TabControlTest, TheBarGrowsWithItsText) {
  AddTabs();
  const int before = Widget(kTabs)->height();
  QFont larger = Widget(kTabs)->font();
  larger.setPointSize(larger.pointSize() * 3);
  Widget(kTabs)->parentWidget()->setFont(larger);
  EXPECT_GT(Widget(kTabs)->height(), before);
}

TEST_F(TabControlTest, TheBarShowsTheOldTabWhileAnEditIsLeftAndWhenThatIsPrevented) {
  for (const bool box : {true, false}) {
    std::vector<int> shown;
    recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
      if (notice != Notice::FocusLost) return;
      shown.push_back(Shown());
      HoldBack(box);
    };
    Run([&] {
      AddTabs();
      ClickSecondTab();
      recorder.onNotice = nullptr;
      shown.push_back(Shown());
    });
    EXPECT_EQ(shown, (std::vector<int>{0, 0})) << box;
  }
}

}  // namespace
}  // namespace platform::qt
