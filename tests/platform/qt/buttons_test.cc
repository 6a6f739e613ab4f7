#include "app/platform/qt/buttons.h"

#include <QAccessible>

#include "app/platform/qt/colours.h"
#include "app/platform/qt/qt_canvas.h"
#include "qt_fixture.h"

namespace platform::qt {
namespace {

class ButtonsTest : public QtTest {};

IN_WINDOW(ButtonsTest, WhatAScreenReaderChecksIsToldInItsTurn) {
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

IN_WINDOW(ButtonsTest, TheOneThatEnterPressesShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kButton)->grab().toImage();
  Widget(kButton)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kButton)->grab().toImage(), without);
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

IN_WINDOW(ButtonsTest, APictureButtonShowsItsBitmap) {
  const QImage bare = Widget(kPictureButton)->grab().toImage();
  EXPECT_TRUE(controls().SetPicture(Window(), kPictureButton, desktop().LoadBitmapA(145)));
  EXPECT_NE(Widget(kPictureButton)->grab().toImage(), bare);
  EXPECT_FALSE(controls().SetPicture(Window(), kButton, desktop().LoadBitmapA(145)));
}

}  // namespace
}  // namespace platform::qt
