// What is asked of a control that isn't there is refused, in the way in which its result can tell.
#include <string>
#include <vector>

#include "desktop_fixture.h"

namespace platform {
namespace {

constexpr std::uint32_t kNobody = 9999;

class MissingControlCase : public DesktopTest {
 protected:
  static void ExpectNoDropList(WindowHandle window, std::uint32_t id) {
    EXPECT_EQ(controls().ComboAddString(window, id, "a"), kNoRow);
    EXPECT_FALSE(controls().ComboDeleteString(window, id, 0));
    EXPECT_FALSE(controls().ComboResetContent(window, id));
    EXPECT_EQ(controls().ComboGetCount(window, id), -1);
    EXPECT_EQ(controls().ComboGetLBText(window, id, 0), "");
    EXPECT_EQ(controls().ComboFindString(window, id, ""), kNoRow);
    EXPECT_EQ(controls().ComboFindStringExact(window, id, ""), kNoRow);
    EXPECT_FALSE(controls().ComboSetCurSel(window, id, kNoRow));
    EXPECT_EQ(controls().ComboGetCurSel(window, id), kNoRow);
    EXPECT_FALSE(controls().ComboSetItemData(window, id, 0, 1));
    EXPECT_EQ(controls().ComboGetItemData(window, id, 0), -1);
  }
  static void ExpectNoListView(WindowHandle window, std::uint32_t id) {
    std::vector<std::int32_t> order = {7};
    EXPECT_EQ(controls().ListInsertColumn(window, id, "a", 10), -1);
    EXPECT_EQ(controls().ListGetColumnWidth(window, id, 0), -1);
    EXPECT_FALSE(controls().ListSetColumnWidth(window, id, 0, 10));
    EXPECT_FALSE(controls().ListGetColumnOrder(window, id, &order));
    EXPECT_EQ(order, std::vector<std::int32_t>{7});
    EXPECT_FALSE(controls().ListSetColumnOrder(window, id, {}));
    EXPECT_EQ(controls().ListGetClientWidth(window, id), -1);
    EXPECT_EQ(controls().ListInsertItem(window, id, 1), kNoRow);
    EXPECT_FALSE(controls().ListDeleteAllItems(window, id));
    EXPECT_EQ(controls().ListGetItemCount(window, id), -1);
    EXPECT_FALSE(controls().ListSetItemText(window, id, 0, 0, "a"));
    EXPECT_EQ(controls().ListGetItemText(window, id, 0, 0), "");
    EXPECT_EQ(controls().ListGetItemData(window, id, 0), 0u);
    EXPECT_FALSE(controls().ListSelectItem(window, id, 0, true));
    EXPECT_EQ(controls().ListGetNextSelected(window, id, kNoRow), kNoRow);
    EXPECT_FALSE(controls().ListEnsureVisible(window, id, 0));
  }
  static void ExpectNoTabsAndNoSlider(WindowHandle window, std::uint32_t id) {
    Rect rect;
    EXPECT_EQ(controls().TabInsertItem(window, id, "a"), -1);
    EXPECT_FALSE(controls().TabGetItemRect(window, id, 0, &rect));
    EXPECT_FALSE(controls().TabSetCurSel(window, id, 0));
    EXPECT_EQ(controls().TabGetCurSel(window, id), -1);
    EXPECT_FALSE(controls().SliderSetRange(window, id, 0, 1));
    EXPECT_FALSE(controls().SliderSetTicFreq(window, id, 1));
    EXPECT_FALSE(controls().SliderSetPos(window, id, 1));
    EXPECT_EQ(controls().SliderGetPos(window, id), -1);
  }
  // What is for controls of every kind, or for several.
  static void ExpectNoControl(WindowHandle window, std::uint32_t id) {
    Rect rect;
    EXPECT_FALSE(controls().HasControl(window, id));
    EXPECT_FALSE(controls().GetControlRect(window, id, &rect));
    EXPECT_FALSE(controls().SetControlPos(window, id, rect, 0));
    EXPECT_FALSE(controls().InvalidateControl(window, id));
    EXPECT_FALSE(controls().ShowControl(window, id, SW_SHOW));
    EXPECT_FALSE(controls().IsControlVisible(window, id));
    EXPECT_FALSE(controls().EnableControl(window, id, true));
    EXPECT_FALSE(controls().IsControlEnabled(window, id));
    EXPECT_FALSE(controls().SetControlFocus(window, id));
    EXPECT_FALSE(controls().SetDefaultButton(window, id));
    EXPECT_FALSE(controls().PostControlMessage(window, id, 1));
    EXPECT_FALSE(controls().SetDlgItemTextA(window, id, "a"));
    EXPECT_EQ(controls().GetDlgItemTextA(window, id), "");
    EXPECT_FALSE(controls().SetCaret(window, id, 0));
    EXPECT_FALSE(controls().CheckDlgButton(window, id, true));
    EXPECT_FALSE(controls().IsDlgButtonChecked(window, id));
    EXPECT_FALSE(controls().SetPicture(window, id, 0));
    EXPECT_FALSE(controls().SetControlFont(window, id, "", 0, 700, false));
    EXPECT_FALSE(controls().SetTextColour(window, id, 0));
    EXPECT_FALSE(controls().SetBackgroundColour(window, id, 0));
    EXPECT_FALSE(controls().SetHandCursor(window, id));
  }
};

IN_WINDOW(MissingControlCase, ANumberThatNoneHasIsRefused) {
  ExpectNoControl(Window(), kNobody);
  ExpectNoDropList(Window(), kNobody);
  ExpectNoListView(Window(), kNobody);
  ExpectNoTabsAndNoSlider(Window(), kNobody);
  EXPECT_TRUE(recorder.lines.empty());
}

IN_WINDOW(MissingControlCase, AWindowThatIsntThereIsRefused) {
  ExpectNoControl(kNoWindow, kButton);
  ExpectNoDropList(kNoWindow, kButton);
  ExpectNoListView(kNoWindow, kButton);
  ExpectNoTabsAndNoSlider(kNoWindow, kButton);
  EXPECT_EQ(controls().GetControlFocus(kNoWindow), 0u);
}

IN_WINDOW(MissingControlCase, AControlOfAnotherKindIsRefused) {
  ExpectNoDropList(Window(), kNameLabel);
  ExpectNoListView(Window(), kNameLabel);
  ExpectNoTabsAndNoSlider(Window(), kNameLabel);
  EXPECT_FALSE(controls().SetCaret(Window(), kNameLabel, 0));
  EXPECT_FALSE(controls().CheckDlgButton(Window(), kNameLabel, true));
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kNameLabel));
  EXPECT_FALSE(controls().SetDefaultButton(Window(), kNameLabel));
  EXPECT_FALSE(controls().SetControlFocus(Window(), kNameLabel));
}

}  // namespace
}  // namespace platform
