#include "app/platform/qt/labels.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class LabelsTest : public QtTest {};

IN_WINDOW(LabelsTest, GiveBackTheirTextWithItsMnemonicMark) {
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameLabel), "&Name");
  EXPECT_EQ(static_cast<QLabel*>(Widget(kNameLabel))->text(), QStringLiteral("Name"));
}

// What a label of this text paints.
QImage Painted(QWidget* label) { return label->grab().toImage(); }

TEST_F(LabelsTest, ATextThatIsSetShowsAsItIs) {
  constexpr char kText[] = "Tom && Jerry & Co";
  Run([&] {
    for (const std::uint32_t id : {kNameLabel, kLink}) {
      EXPECT_TRUE(controls().SetDlgItemTextA(Window(), id, kText));
      EXPECT_EQ(controls().GetDlgItemTextA(Window(), id), kText);
      EXPECT_EQ(QAccessible::queryAccessibleInterface(Widget(id))->text(QAccessible::Name),
                QString::fromLatin1(kText));
    }
    EXPECT_EQ(Widget(kNameEdit)->accessibleName(), QString::fromLatin1(kText));
    controls().SetDlgItemTextA(Window(), kNameLabel, "a&b");
    const QImage one = Painted(Widget(kNameLabel));
    controls().SetDlgItemTextA(Window(), kNameLabel, "a&&b");
    EXPECT_NE(one, Painted(Widget(kNameLabel)));
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kGroup, kText));
    EXPECT_EQ(static_cast<QGroupBox*>(Widget(kGroup))->title(),
              QStringLiteral("Tom &&&& Jerry && Co"));
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kCheck, kText));
    EXPECT_EQ(static_cast<QAbstractButton*>(Widget(kCheck))->text(),
              QStringLiteral("Tom &&&& Jerry && Co"));
    EXPECT_EQ(controls().GetDlgItemTextA(Window(), kCheck), kText);
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kNameEdit, kText));
    EXPECT_EQ(static_cast<QLineEdit*>(Widget(kNameEdit))->text(), QString::fromLatin1(kText));
  });
}

IN_WINDOW(LabelsTest, AClickOnALabelIsToldWhenTheButtonGoesDown) {
  QTest::mousePress(Widget(kNameLabel), Qt::LeftButton);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"100 clicked"}));
  QTest::mouseRelease(Widget(kNameLabel), Qt::LeftButton);
  QTest::mouseClick(Widget(kNameLabel), Qt::RightButton);
  EXPECT_TRUE(recorder.lines.empty());
}

IN_WINDOW(LabelsTest, ALinkIsOneForAScreenReader) {
  QAccessibleInterface* const link = QAccessible::queryAccessibleInterface(Widget(kLink));
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->role(), QAccessible::Link);
  EXPECT_EQ(link->text(QAccessible::Name), QStringLiteral("the web"));
  recorder.lines.clear();
  ASSERT_NE(link->actionInterface(), nullptr);
  link->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(recorder.TakeLines(), (Lines{"120 clicked"}));
  EXPECT_EQ(link->actionInterface()->actionNames(),
            QStringList{QAccessibleActionInterface::pressAction()});
  link->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(recorder.TakeLines(), Lines{});
  EXPECT_EQ(link->text(QAccessible::Description), QString());
  Widget(kLink)->setAccessibleName(QStringLiteral("its own"));
  EXPECT_EQ(link->text(QAccessible::Name), QStringLiteral("its own"));
}

IN_WINDOW(LabelsTest, TheLooksThatTheProgramGives) {
  EXPECT_TRUE(controls().SetControlFont(Window(), kLink, "Arial", 14, 700, true));
  EXPECT_EQ(Widget(kLink)->font().family(), QStringLiteral("Arial"));
  EXPECT_EQ(Widget(kLink)->font().pixelSize(), 14);
  EXPECT_EQ(Widget(kLink)->font().weight(), QFont::Bold);
  EXPECT_TRUE(Widget(kLink)->font().underline());
  EXPECT_TRUE(controls().SetControlFont(Window(), kLink, "", 0, 0, false));
  EXPECT_EQ(Widget(kLink)->font().family(), QStringLiteral("Arial"));
  EXPECT_EQ(Widget(kLink)->font().pixelSize(), 14);
  EXPECT_EQ(Widget(kLink)->font().weight(), QFont::Bold);
  EXPECT_FALSE(Widget(kLink)->font().underline());

  EXPECT_TRUE(controls().SetTextColour(Window(), kLink, Rgb(0, 0, 255)));
  EXPECT_EQ(Widget(kLink)->palette().color(QPalette::WindowText), QColor(0, 0, 255));
  EXPECT_TRUE(controls().SetHandCursor(Window(), kLink));
  EXPECT_EQ(Widget(kLink)->cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(LabelsTest, AColourThatTheProgramGivesCanBeReadOnADarkDesktop) {
  const QPalette before = QApplication::palette();
  QApplication::setPalette(QPalette(QColor(0x2D, 0x2D, 0x30), QColor(0x2D, 0x2D, 0x30)));
  Run([&] {
    controls().SetTextColour(Window(), kLink, Rgb(0, 0, 255));
    EXPECT_GT(Widget(kLink)->palette().color(QPalette::WindowText).lightness(), 150);
    // On a background of the program's own the colour stays.
    controls().SetBackgroundColour(Window(), kArea, Rgb(255, 255, 255));
    controls().SetTextColour(Window(), kArea, Rgb(0, 0, 64));
    EXPECT_EQ(Widget(kArea)->palette().color(QPalette::Text), QColor(0, 0, 64));
    EXPECT_EQ(Widget(kArea)->palette().color(QPalette::Base), QColor(Qt::white));
    // The desktop becomes a light one while the window is open.
    QApplication::setPalette(before);
    Settle();
    EXPECT_EQ(Widget(kLink)->palette().color(QPalette::WindowText), QColor(0, 0, 255));
  });
  QApplication::setPalette(before);
}

IN_WINDOW(LabelsTest, APictureShowsItsBitmap) {
  const QImage bare = Widget(kPicture)->grab().toImage();
  EXPECT_TRUE(controls().SetPicture(Window(), kPicture, desktop().LoadBitmapA(148)));
  EXPECT_NE(Widget(kPicture)->grab().toImage(), bare);
  EXPECT_FALSE(controls().SetPicture(Window(), kLink, desktop().LoadBitmapA(148)));
}

IN_WINDOW(LabelsTest, ABoxTakesRoomAndIsNeverSeen) {
  EXPECT_TRUE(controls().HasControl(Window(), kBox));
  EXPECT_TRUE(controls().IsControlVisible(Window(), kBox));
  EXPECT_FALSE(Dialog()->Find(kBox)->Widget()->isVisible());
  EXPECT_TRUE(controls().ShowControl(Window(), kBox, SW_SHOW));
  EXPECT_FALSE(Dialog()->Find(kBox)->Widget()->isVisible());
  EXPECT_TRUE(controls().SetControlPos(Window(), kBox, {1, 2, 33, 44}, 0));
  Rect rect;
  EXPECT_TRUE(controls().GetControlRect(Window(), kBox, &rect));
  EXPECT_EQ(rect, (Rect{1, 2, 33, 44}));
}

IN_WINDOW(LabelsTest, EveryControlThatTakesTheFocusHasAName) {
  struct Case {
    std::uint32_t id;
    const char* name;
  };
  const Case cases[] = {
      {kNameEdit, "Name"},          // of the label before it
      {kDigitsEdit, "Digits"},      // of the template
      {kArea, "Area"},              //
      {kButton, "Edit"},            // its own text
      {kPictureButton, "Move up"},  // its own text, which isn't seen
      {kDrawnButton, "Test"},       //
      {kCheck, "Check"},            //
      {kRadioC, "C"},               // not of the group
      {kDropList, "Plain list"},    //
      {kList, "List"},              //
      {kSlider, "Speed (0)"},       // of the group box before it
      {kLink, "the web"},           //
  };
  for (const Case& c : cases) {
    QAccessibleInterface* const made = QAccessible::queryAccessibleInterface(Widget(c.id));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->text(QAccessible::Name).toStdString(), c.name) << c.id;
  }
}

IN_WINDOW(LabelsTest, WhatIsOnlySeenSaysWhatItIs) {
  const std::pair<std::uint32_t, QAccessible::Role> kRoles[] = {{kPicture, QAccessible::Graphic},
                                                                {kRule, QAccessible::Separator}};
  for (const auto& [id, role] : kRoles)
    EXPECT_EQ(QAccessible::queryAccessibleInterface(Widget(id))->role(), role) << id;
}

IN_WINDOW(LabelsTest, ALabelIsBoundToItsField) {
  const auto relations = QAccessible::queryAccessibleInterface(Widget(kNameEdit))->relations();
  ASSERT_EQ(relations.size(), 1);
  EXPECT_EQ(relations[0].first->object(), Widget(kNameLabel));
  EXPECT_TRUE(relations[0].second.testFlag(QAccessible::Label));
}

// The label before it is a value of something else.
constexpr ControlTemplate kValueBefore[] = {
    {ControlKind::Label, kNameLabel, "0", 5, 5, 50, 8},
    {ControlKind::Label, kLink, "Interval", 5, 15, 50, 8},
    {ControlKind::Edit, kNameEdit, "", 60, 14, 80, 12},
};

TEST_F(LabelsTest, TheNameIsTheNearestLabelsWhateverTheOthersShow) {
  static constexpr DialogTemplate dialog = {3, "Values", 100, 40, 0, kValueBefore};
  Run(dialog, [&] {
    controls().SetDlgItemTextA(Window(), kNameLabel, "12");
    EXPECT_EQ(Widget(kNameEdit)->accessibleName(), QStringLiteral("Interval"));
    controls().SetDlgItemTextA(Window(), kLink, "Rate");
    EXPECT_EQ(Widget(kNameEdit)->accessibleName(), QStringLiteral("Rate"));
  });
}

IN_WINDOW(LabelsTest, ANameFollowsTheLabel) {
  controls().SetDlgItemTextA(Window(), kSliderGroup, "Speed (25)");
  EXPECT_EQ(static_cast<QGroupBox*>(Widget(kSliderGroup))->title(), QStringLiteral("Speed (25)"));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(Widget(kSlider))->text(QAccessible::Name),
            QStringLiteral("Speed (25)"));
}

}  // namespace
}  // namespace platform::qt
