#include "app/platform/qt/tab_control.h"

#include <QTabBar>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class TabControlTest : public QtTest {
 protected:
  void AddTabs() {
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "One"), 0);
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "Two"), 1);
  }
  // On its title, with the focus in an edit before.
  void ClickTheSecondTab() {
    controls().SetControlFocus(Window(), kNameEdit);
    Rect rect;
    ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 1, &rect));
    const QPoint point = Widget(kTabs)->mapTo(Dialog(), QPoint(rect.left + 4, rect.top + 4));
    QTest::mouseClick(Dialog()->windowHandle(), Qt::LeftButton, {}, point);
  }
  int Shown() const { return static_cast<QTabBar*>(Widget(kTabs))->currentIndex(); }
};

WINDOW_TEST(TabControlTest, ShowsTheFirstTabUntilAnotherIsSet) {
  AddTabs();
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0);
  EXPECT_TRUE(controls().TabSetCurSel(Window(), kTabs, 1));
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 1);
  EXPECT_FALSE(controls().TabSetCurSel(Window(), kTabs, 2));
  EXPECT_TRUE(recorder.lines.empty());
}

WINDOW_TEST(TabControlTest, ArrowKeysChooseTabs) {
  AddTabs();
  controls().SetControlFocus(Window(), kTabs);
  EXPECT_EQ(controls().GetControlFocus(Window()), kTabs);
  QTest::keyClick(Widget(kTabs), Qt::Key_Right);
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"117 selection changed 1"}));
}

WINDOW_TEST(TabControlTest, KeysOfTheWindowChooseTabsFromAnywhere) {
  AddTabs();
  EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "Three"), 2);
  for (const std::uint32_t id : {kNameEdit, kArea, kDropList, kList, kSlider, kTabs}) {
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers held) {
      controls().SetControlFocus(Window(), id);
      QTest::keyClick(Dialog()->windowHandle(), key, held);
      EXPECT_EQ(controls().GetControlFocus(Window()), kTabs) << id;
      return controls().TabGetCurSel(Window(), kTabs);
    };
    EXPECT_EQ(press(Qt::Key_Tab, Qt::ControlModifier), 1) << id;
    EXPECT_EQ(press(Qt::Key_PageDown, Qt::ControlModifier), 2) << id;
    EXPECT_EQ(press(Qt::Key_Tab, Qt::ControlModifier), 0) << id;
    EXPECT_EQ(press(Qt::Key_PageUp, Qt::ControlModifier), 2) << id;
    EXPECT_EQ(press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), 1) << id;
    recorder.lines.clear();
    EXPECT_EQ(press(Qt::Key_PageUp, Qt::ControlModifier), 0) << id;
    EXPECT_EQ(recorder.LinesOf(kTabs), (std::vector<std::string>{"117 selection changed"}));
  }
}

// A box, or the focus alone, holds back a person who leaves the edit.
TEST_F(TabControlTest, AClickThatLeavingAnEditPreventsChangesNoTab) {
  for (const bool box : {true, false}) {
    recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
      if (notice != Notice::FocusLost) return;
      EXPECT_EQ(Shown(), 0) << "already";
      if (box) {
        QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
        desktop().MessageBoxA(Window(), "Please enter another", "Refused", MB_OK);
      } else {
        controls().SetControlFocus(Window(), kNameEdit);
      }
    };
    Run([&] {
      AddTabs();
      ClickTheSecondTab();
      EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"101 focus lost"})) << box;
      EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0) << box;
      EXPECT_EQ(Shown(), 0) << box;
      recorder.onNotice = nullptr;
    });
  }
}

WINDOW_TEST(TabControlTest, TabsStandBesideOneAnother) {
  AddTabs();
  Rect first;
  Rect second;
  ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 0, &first));
  ASSERT_TRUE(controls().TabGetItemRect(Window(), kTabs, 1, &second));
  EXPECT_GT(first.Height(), 8);
  EXPECT_EQ(first.top, second.top);
  EXPECT_EQ(first.right, second.left);
  EXPECT_FALSE(controls().TabGetItemRect(Window(), kTabs, 2, &second));
  EXPECT_FALSE(controls().TabGetItemRect(Window(), kButton, 0, &second));
  EXPECT_EQ(controls().TabGetCurSel(Window(), kButton), -1);
  EXPECT_EQ(controls().TabInsertItem(Window(), kButton, "x"), -1);
}

TEST_F(TabControlTest, ATabHasItsRectangleBeforeTheWindowIsSeen) {
  Rect first;
  recorder.onInit = [&](WindowHandle window) {
    controls().TabInsertItem(window, kTabs, "One");
    EXPECT_TRUE(controls().TabGetItemRect(window, kTabs, 0, &first));
  };
  Run([&] {
    Rect shown;
    controls().TabGetItemRect(Window(), kTabs, 0, &shown);
    EXPECT_EQ(first.Height(), shown.Height());
  });
}

}  // namespace
}  // namespace platform::qt
