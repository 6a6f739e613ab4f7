#include "app/platform/qt/tab_control.h"

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class TabControlTest : public QtTest {
 protected:
  void AddTabs() {
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "One"), 0);
    EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "Two"), 1);
  }
};

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

}  // namespace
}  // namespace platform::qt
