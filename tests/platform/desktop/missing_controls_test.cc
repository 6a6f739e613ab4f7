#include "desktop_fixture.h"

namespace platform {
namespace {

constexpr std::uint32_t kNone = 9999;

class MissingControlTest : public DesktopTest {
 protected:
  // What every kind of control can be asked; a window that isn't there has none.
  void ExpectNothingToAsk(WindowHandle window) {
    Controls& all = controls();
    Rect rect;
    EXPECT_FALSE(all.HasControl(window, kNone));
    EXPECT_FALSE(all.GetControlRect(window, kNone, &rect));
    EXPECT_FALSE(all.SetControlPos(window, kNone, rect, 0));
    EXPECT_FALSE(all.InvalidateControl(window, kNone));
    EXPECT_FALSE(all.ShowControl(window, kNone, SW_HIDE));
    EXPECT_FALSE(all.IsControlVisible(window, kNone));
    EXPECT_FALSE(all.EnableControl(window, kNone, false));
    EXPECT_FALSE(all.IsControlEnabled(window, kNone));
    EXPECT_FALSE(all.SetControlFocus(window, kNone));
    EXPECT_FALSE(all.SetDefaultButton(window, kNone));
    EXPECT_FALSE(all.PostControlMessage(window, kNone, 0x8001));
    EXPECT_FALSE(all.SetDlgItemTextA(window, kNone, "text"));
    EXPECT_EQ(all.GetDlgItemTextA(window, kNone), "");
    EXPECT_FALSE(all.CheckDlgButton(window, kNone, true));
    EXPECT_FALSE(all.IsDlgButtonChecked(window, kNone));
    EXPECT_FALSE(all.SetPicture(window, kNone, 0));
    EXPECT_FALSE(all.SetControlFont(window, kNone, "Sans", 12, 400, false));
    EXPECT_FALSE(all.SetTextColour(window, kNone, 0));
    EXPECT_FALSE(all.SetBackgroundColour(window, kNone, 0));
    EXPECT_FALSE(all.SetHandCursor(window, kNone));
  }

  void ExpectNoDropList(WindowHandle window, std::uint32_t id) {
    Controls& all = controls();
    EXPECT_EQ(all.ComboAddString(window, id, "row"), kNoRow);
    EXPECT_FALSE(all.ComboDeleteString(window, id, 0));
    EXPECT_FALSE(all.ComboResetContent(window, id));
    EXPECT_EQ(all.ComboGetCount(window, id), -1);
    EXPECT_EQ(all.ComboGetLBText(window, id, 0), "");
    EXPECT_EQ(all.ComboFindString(window, id, "row"), kNoRow);
    EXPECT_EQ(all.ComboFindStringExact(window, id, "row"), kNoRow);
    EXPECT_FALSE(all.ComboSetCurSel(window, id, 0));
    EXPECT_EQ(all.ComboGetCurSel(window, id), kNoRow);
    EXPECT_FALSE(all.ComboSetItemData(window, id, 0, 1));
    EXPECT_EQ(all.ComboGetItemData(window, id, 0), -1);
  }

  void ExpectNoListView(WindowHandle window, std::uint32_t id) {
    Controls& all = controls();
    std::vector<std::int32_t> order = {7};
    EXPECT_EQ(all.ListInsertColumn(window, id, "column", 100), -1);
    EXPECT_EQ(all.ListGetColumnWidth(window, id, 0), -1);
    EXPECT_FALSE(all.ListSetColumnWidth(window, id, 0, 50));
    EXPECT_FALSE(all.ListGetColumnOrder(window, id, &order));
    EXPECT_EQ(order, Numbers{7});
    EXPECT_FALSE(all.ListSetColumnOrder(window, id, {0}));
    EXPECT_EQ(all.ListGetClientWidth(window, id), -1);
    EXPECT_EQ(all.ListInsertItem(window, id, 1), kNoRow);
    EXPECT_FALSE(all.ListDeleteAllItems(window, id));
    EXPECT_EQ(all.ListGetItemCount(window, id), -1);
    EXPECT_FALSE(all.ListSetItemText(window, id, 0, 0, "text"));
    EXPECT_EQ(all.ListGetItemText(window, id, 0, 0), "");
    EXPECT_EQ(all.ListGetItemData(window, id, 0), 0u);
    EXPECT_FALSE(all.ListSelectItem(window, id, 0, true));
    EXPECT_EQ(all.ListGetNextSelected(window, id, kNoRow), kNoRow);
    EXPECT_FALSE(all.ListEnsureVisible(window, id, 0));
  }

  void ExpectNoTabsNoSliderNoEdit(WindowHandle window, std::uint32_t id) {
    Controls& all = controls();
    Rect rect;
    EXPECT_EQ(all.TabInsertItem(window, id, "tab"), -1);
    EXPECT_FALSE(all.TabGetItemRect(window, id, 0, &rect));
    EXPECT_FALSE(all.TabSetCurSel(window, id, 0));
    EXPECT_EQ(all.TabGetCurSel(window, id), -1);
    EXPECT_FALSE(all.SliderSetRange(window, id, 0, 10));
    EXPECT_FALSE(all.SliderSetTicFreq(window, id, 1));
    EXPECT_FALSE(all.SliderSetPos(window, id, 1));
    EXPECT_EQ(all.SliderGetPos(window, id), -1);
    EXPECT_FALSE(all.SetCaret(window, id, 0));
  }
};

TEST_F(MissingControlTest, CanNotBeAskedForAnything) {
  Run([&] {
    for (const WindowHandle window : {Window(), WindowHandle{99}}) {
      ExpectNothingToAsk(window);
      ExpectNoDropList(window, kNone);
      ExpectNoListView(window, kNone);
      ExpectNoTabsNoSliderNoEdit(window, kNone);
    }
    EXPECT_EQ(controls().GetControlFocus(99), 0u);
  });
}

TEST_F(MissingControlTest, OneOfAnotherKindIsNotAskedEither) {
  Run([&] {
    ExpectNoDropList(Window(), kList);
    ExpectNoListView(Window(), kNameEdit);
    ExpectNoTabsNoSliderNoEdit(Window(), kButton);
    EXPECT_EQ(controls().ListGetItemCount(Window(), kList), 0);
  });
}

}  // namespace
}  // namespace platform
