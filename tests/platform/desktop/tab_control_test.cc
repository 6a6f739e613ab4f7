#include "desktop_fixture.h"

namespace platform {
namespace {

class TabControlCase : public DesktopTest {};

IN_WINDOW(TabControlCase, ShowsTheFirstTabUntilAnotherIsSet) {
  AddTabs();
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0);
  EXPECT_TRUE(controls().TabSetCurSel(Window(), kTabs, 1));
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 1);
  EXPECT_FALSE(controls().TabSetCurSel(Window(), kTabs, 2));
  EXPECT_TRUE(recorder.lines.empty());
}

IN_WINDOW(TabControlCase, ArrowKeysChooseTabs) {
  AddTabs();
  controls().SetControlFocus(Window(), kTabs);
  EXPECT_EQ(controls().GetControlFocus(Window()), kTabs);
  Key(key::kRight);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"117 selection changed 1"}));
}

TEST_F(TabControlCase, ATabHasItsRectangleBeforeTheWindowIsSeen) {
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

IN_WINDOW(TabControlCase, KeysOfTheWindowChooseTabsFromAnywhere) {
  AddTabs();
  EXPECT_EQ(controls().TabInsertItem(Window(), kTabs, "Three"), 2);
  for (const std::uint32_t id : {kNameEdit, kArea, kDropList, kList, kSlider, kTabs}) {
    const auto press = [&](std::uint8_t vk, unsigned held) {
      controls().SetControlFocus(Window(), id);
      Key(vk, held);
      EXPECT_EQ(controls().GetControlFocus(Window()), kTabs) << id;
      return controls().TabGetCurSel(Window(), kTabs);
    };
    EXPECT_EQ(press(key::kTab, kControl), 1) << id;
    EXPECT_EQ(press(key::kPageDown, kControl), 2) << id;
    EXPECT_EQ(press(key::kTab, kControl), 0) << id;
    EXPECT_EQ(press(key::kPageUp, kControl), 2) << id;
    EXPECT_EQ(press(key::kTab, kControl | kShift), 1) << id;
    recorder.lines.clear();
    EXPECT_EQ(press(key::kPageUp, kControl), 0) << id;
    EXPECT_EQ(recorder.LinesOf(kTabs), (Lines{"117 selection changed"}));
  }
}

TEST_F(TabControlCase, AClickThatLeavingAnEditPreventsChangesNoTab) {
  for (const bool box : {true, false}) {
    recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
      if (notice != Notice::FocusLost) return;
      EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0) << "already";
      HoldBack(box);
    };
    Run([&] {
      AddTabs();
      ClickSecondTab();
      EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost"})) << box;
      EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 0) << box;
      recorder.onNotice = nullptr;
    });
  }
}

IN_WINDOW(TabControlCase, AClickOnATabIsTold) {
  AddTabs();
  ClickSecondTab();
  EXPECT_EQ(recorder.LinesOf(kTabs), (Lines{"117 selection changed 1"}));
  EXPECT_EQ(controls().TabGetCurSel(Window(), kTabs), 1);
}

}  // namespace
}  // namespace platform
