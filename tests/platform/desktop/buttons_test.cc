#include <thread>

#include "desktop_fixture.h"

namespace platform {
namespace {

class ButtonCase : public DesktopTest {};

IN_WINDOW(ButtonCase, ADisabledOneIsDead) {
  EXPECT_TRUE(controls().EnableControl(Window(), kButton, false));
  EXPECT_FALSE(controls().IsControlEnabled(Window(), kButton));
  Click(kButton);
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_TRUE(controls().EnableControl(Window(), kButton, true));
  EXPECT_TRUE(controls().IsControlEnabled(Window(), kButton));
}

IN_WINDOW(ButtonCase, CheckingByTheProgramIsNoNews) {
  EXPECT_TRUE(controls().CheckDlgButton(Window(), kCheck, true));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_FALSE(controls().CheckDlgButton(Window(), kButton, true));
}

IN_WINDOW(ButtonCase, ARunOfRadioButtonsIsOneChoice) {
  controls().SetControlFocus(Window(), kSlider);
  controls().CheckDlgButton(Window(), kRadioA, true);
  controls().CheckDlgButton(Window(), kRadioC, true);
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioA)) << "another run";
  controls().CheckDlgButton(Window(), kRadioB, true);
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioB));
  ClickAt(kRadioD, {5, 5});
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioC));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioD));
  EXPECT_EQ(recorder.TakeLines(), (Lines{"113 clicked"}));
}

IN_WINDOW(ButtonCase, ARunCanBeLeftWithoutAChoice) {
  controls().CheckDlgButton(Window(), kRadioA, true);
  EXPECT_TRUE(controls().CheckDlgButton(Window(), kRadioA, false));
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA));
  controls().CheckDlgButton(Window(), kRadioA, true);
  controls().CheckDlgButton(Window(), kRadioB, true);
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA)) << "still one choice";
}

TEST_F(ButtonCase, AClickThatLeavingAnEditPreventsPressesNoButton) {
  recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
    if (notice == Notice::FocusLost) controls().SetControlFocus(Window(), kNameEdit);
  };
  Run([&] {
    controls().SetControlFocus(Window(), kNameEdit);
    Click(kButton);
    EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost"}));
    EXPECT_EQ(controls().GetControlFocus(Window()), kNameEdit);
    recorder.onNotice = nullptr;
  });
}

TEST_F(ButtonCase, ADrawnButtonIsDrawnAtOnceWhenTheFocusComesOrGoes) {
  std::vector<bool> focused;
  recorder.onDraw = [&](const DrawItem& item, Canvas&) {
    if (item.focusAction) focused.push_back(item.focused);
  };
  Run([&] {
    controls().SetControlFocus(Window(), kDrawnButton);
    EXPECT_EQ(focused, (std::vector<bool>{true}));
    controls().SetControlFocus(Window(), kNameEdit);
    EXPECT_EQ(focused, (std::vector<bool>{true, false}));
  });
}

TEST_F(ButtonCase, ADrawnButtonIsDrawnAnewWhenAnotherThreadAsks) {
  int drawn = 0;
  recorder.onDraw = [&](const DrawItem&, Canvas&) { ++drawn; };
  Run([&] {
    controls().SetControlFocus(Window(), kNameEdit);
    Settle();
    drawn = 0;
    std::thread([&] { EXPECT_TRUE(controls().InvalidateControl(Window(), kDrawnButton)); }).join();
    EXPECT_TRUE(WaitFor([&] { return drawn > 0; }));
  });
}

TEST_F(ButtonCase, ADrawnButtonIsDrawnByTheListenerAndPressedByAClick) {
  std::vector<DrawItem> items;
  recorder.onDraw = [&](const DrawItem& item, Canvas& canvas) {
    items.push_back(item);
    canvas.FillRect(item.rect, Rgb(1, 2, 3));
  };
  Run([&] {
    controls().SetControlFocus(Window(), kNameEdit);
    Settle();
    items.clear();
    controls().InvalidateControl(Window(), kDrawnButton);
    EXPECT_TRUE(WaitFor([&] { return !items.empty(); }));
    Rect place;
    controls().GetControlRect(Window(), kDrawnButton, &place);
    EXPECT_EQ(items.back().id, kDrawnButton);
    EXPECT_EQ(items.back().rect, (Rect{0, 0, place.Width(), place.Height()}));
    EXPECT_FALSE(items.back().pressed || items.back().focused || items.back().disabled);
    controls().EnableControl(Window(), kDrawnButton, false);
    EXPECT_TRUE(WaitFor([&] { return items.back().disabled; }));
    Click(kDrawnButton);
    EXPECT_TRUE(recorder.LinesOf(kDrawnButton).empty());
    controls().EnableControl(Window(), kDrawnButton, true);
    Click(kDrawnButton);
    EXPECT_EQ(recorder.LinesOf(kDrawnButton), (Lines{"107 clicked"}));
  });
}

IN_WINDOW(ButtonCase, AClickIsTold) {
  controls().SetControlFocus(Window(), kSlider);
  Click(kButton);
  Click(kPictureButton);
  ClickAt(kCheck, {5, 5});
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  ClickAt(kCheck, {5, 5});
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(recorder.TakeLines(),
            (Lines{"105 clicked", "106 clicked", "108 clicked", "108 clicked"}));
}

}  // namespace
}  // namespace platform
