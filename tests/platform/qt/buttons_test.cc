#include "app/platform/qt/buttons.h"

#include <QAccessible>

#include "app/platform/qt/colours.h"
#include "app/platform/qt/qt_canvas.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

using Lines = std::vector<std::string>;

class ButtonsTest : public QtTest {};

WINDOW_TEST(ButtonsTest, ADisabledOneIsDead) {
  EXPECT_TRUE(controls().EnableControl(Window(), kButton, false));
  EXPECT_FALSE(controls().IsControlEnabled(Window(), kButton));
  QTest::mouseClick(Widget(kButton), Qt::LeftButton);
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_TRUE(controls().EnableControl(Window(), kButton, true));
  EXPECT_TRUE(controls().IsControlEnabled(Window(), kButton));
}

WINDOW_TEST(ButtonsTest, CheckingByTheProgramIsNoNews) {
  EXPECT_TRUE(controls().CheckDlgButton(Window(), kCheck, true));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_TRUE(recorder.lines.empty());
  EXPECT_FALSE(controls().CheckDlgButton(Window(), kButton, true));
  EXPECT_FALSE(controls().CheckDlgButton(Window(), 999, true));
}

WINDOW_TEST(ButtonsTest, ARunOfRadioButtonsIsOneChoice) {
  controls().SetControlFocus(Window(), kSlider);
  controls().CheckDlgButton(Window(), kRadioA, true);
  controls().CheckDlgButton(Window(), kRadioC, true);
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioA)) << "another run";
  controls().CheckDlgButton(Window(), kRadioB, true);
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioB));
  QTest::mouseClick(Widget(kRadioD), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioC));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kRadioD));
  EXPECT_EQ(recorder.TakeLines(), (Lines{"113 clicked"}));
}

WINDOW_TEST(ButtonsTest, WhatAScreenReaderChecksIsToldInItsTurn) {
  const auto toggle = [&](std::uint32_t id) {
    QAccessible::queryAccessibleInterface(Widget(id))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(recorder.lines.empty()) << "before the reader has its answer";
    Settle();
    return recorder.TakeLines();
  };
  EXPECT_EQ(toggle(kCheck), Lines{std::to_string(kCheck) + " clicked"});
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  controls().CheckDlgButton(Window(), kRadioA, true);
  EXPECT_EQ(toggle(kRadioB), Lines{std::to_string(kRadioB) + " clicked"});
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA));
}

WINDOW_TEST(ButtonsTest, TheOneThatEnterPressesShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kButton)->grab().toImage();
  Widget(kButton)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kButton)->grab().toImage(), without);
}

WINDOW_TEST(ButtonsTest, ARunCanBeLeftWithoutAChoice) {
  controls().CheckDlgButton(Window(), kRadioA, true);
  EXPECT_TRUE(controls().CheckDlgButton(Window(), kRadioA, false));
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA));
  controls().CheckDlgButton(Window(), kRadioA, true);
  controls().CheckDlgButton(Window(), kRadioB, true);
  EXPECT_FALSE(controls().IsDlgButtonChecked(Window(), kRadioA)) << "still one choice";
}

TEST_F(ButtonsTest, ADrawnButtonIsDrawnByTheListenerInItsStates) {
  std::vector<DrawItem> items;
  recorder.onDraw = [&](const DrawItem& item, Canvas& canvas) {
    items.push_back(item);
    canvas.FillRect(item.rect, Rgb(1, 2, 3));
  };
  Run([&] {
    QWidget* const button = Widget(kDrawnButton);
    EXPECT_EQ(PixelOf(button, 2, 2), QColor(1, 2, 3));
    EXPECT_EQ(items.back().id, kDrawnButton);
    EXPECT_EQ(items.back().rect, RectOf(button->rect()));
    EXPECT_FALSE(items.back().pressed || items.back().focused || items.back().disabled ||
                 items.back().focusAction);

    controls().SetControlFocus(Window(), kDrawnButton);
    EXPECT_TRUE(items.back().focused);
    EXPECT_TRUE(items.back().focusAction);
    button->repaint();
    EXPECT_FALSE(items.back().focusAction) << "once for each change";

    QTest::mousePress(button, Qt::LeftButton);
    button->repaint();
    EXPECT_TRUE(items.back().pressed);
    QTest::mouseRelease(button, Qt::LeftButton);

    controls().EnableControl(Window(), kDrawnButton, false);
    button->repaint();
    EXPECT_TRUE(items.back().disabled);
  });
}

WINDOW_TEST(ButtonsTest, APictureButtonShowsItsBitmap) {
  const QImage bare = Widget(kPictureButton)->grab().toImage();
  EXPECT_TRUE(controls().SetPicture(Window(), kPictureButton, desktop().LoadBitmapA(145)));
  EXPECT_NE(Widget(kPictureButton)->grab().toImage(), bare);
  EXPECT_FALSE(controls().SetPicture(Window(), kButton, desktop().LoadBitmapA(145)));
}

TEST_F(ButtonsTest, ADrawnButtonIsDrawnAtOnceWhenTheFocusComesOrGoes) {
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

TEST_F(ButtonsTest, AClickThatLeavingAnEditPreventsPressesNoButton) {
  recorder.onNotice = [&](std::uint32_t, Notice notice, std::int32_t) {
    if (notice == Notice::FocusLost) controls().SetControlFocus(Window(), kNameEdit);
  };
  Run([&] {
    controls().SetControlFocus(Window(), kNameEdit);
    const QPoint point = Widget(kButton)->geometry().center();
    QTest::mouseClick(Dialog()->windowHandle(), Qt::LeftButton, {}, point);
    EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"101 focus lost"}));
    recorder.onNotice = nullptr;
  });
}

}  // namespace
}  // namespace platform::qt
