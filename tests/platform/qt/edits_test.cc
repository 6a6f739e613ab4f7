#include "app/platform/qt/edits.h"

#include <QAccessible>
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "qt_fixture.h"

namespace platform::qt {
namespace {

class EditsTest : public QtTest {
 protected:
  QLineEdit* Line(std::uint32_t id) const { return static_cast<QLineEdit*>(Widget(id)); }
};

IN_WINDOW(EditsTest, ATextAreaShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kArea)->grab().toImage();
  Widget(kArea)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kArea)->grab().toImage(), without);
}

IN_WINDOW(EditsTest, ATextThatAScreenReaderPutsThereCounts) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "before");
  EXPECT_TRUE(recorder.lines.empty()) << "the program's own doing is no news";
  QAccessible::queryAccessibleInterface(Widget(kNameEdit))
      ->setText(QAccessible::Value, QStringLiteral("spoken"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "spoken");
  EXPECT_EQ(recorder.TakeLines(), Lines{std::to_string(kNameEdit) + " changed"});
}

IN_WINDOW(EditsTest, AFieldToReadDoesNotLookAsIfOneCouldTypeIntoIt) {
  const auto inside = [&](std::uint32_t id) {
    QWidget* const field = Widget(id);
    return PixelOf(field, field->width() / 2 + 10, field->height() / 2);
  };
  const QColor window = Dialog()->palette().color(QPalette::Window);
  EXPECT_EQ(inside(kReadOnlyEdit), window);
  EXPECT_EQ(inside(kArea), window);
  EXPECT_EQ(inside(kNameEdit), Dialog()->palette().color(QPalette::Base));
  EXPECT_NE(inside(kNameEdit), window);
}

TEST_F(EditsTest, ATextToReadHasNoCaret) {
  const int blinking = QApplication::cursorFlashTime();
  QApplication::setCursorFlashTime(0);
  Run([&] {
    Dialog()->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Dialog(), kSoon));
    controls().SetControlFocus(Window(), kArea);
    auto* const area = static_cast<QPlainTextEdit*>(Widget(kArea));
    const QImage atStart = area->grab().toImage();
    QTest::keyClick(area, Qt::Key_End);
    QTest::keyClick(area, Qt::Key_Right, Qt::ShiftModifier);  // it can be marked by keyboard
    EXPECT_TRUE(area->textCursor().hasSelection());
    QTest::keyClick(area, Qt::Key_Left);
    EXPECT_EQ(area->grab().toImage(), atStart);
  });
  QApplication::setCursorFlashTime(blinking);
}

IN_WINDOW(EditsTest, TypedTextIsUtf8) {
  Line(kNameEdit)->insert(QStringLiteral("ü"));
  QTest::keyClicks(Line(kNameEdit), QStringLiteral("x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "\xC3\xBCx");
}

IN_WINDOW(EditsTest, TheCaretStandsBehindThatManyBytes) {
  controls().SetDlgItemTextA(Window(), kNameEdit,
                             "a\xC3\xBC"
                             "bc");
  Line(kNameEdit)->selectAll();
  EXPECT_TRUE(controls().SetCaret(Window(), kNameEdit, 3));
  EXPECT_EQ(Line(kNameEdit)->cursorPosition(), 2);
  EXPECT_FALSE(Line(kNameEdit)->hasSelectedText());
  controls().SetDlgItemTextA(Window(), kNameEdit,
                             "a\xFC"
                             "bc");
  EXPECT_TRUE(controls().SetCaret(Window(), kNameEdit, 3));
  EXPECT_EQ(Line(kNameEdit)->cursorPosition(), 3);
  EXPECT_TRUE(controls().SetCaret(Window(), kNameEdit, 99));
  EXPECT_EQ(Line(kNameEdit)->cursorPosition(), 4);
  EXPECT_FALSE(controls().SetCaret(Window(), kButton, 0));
}

IN_WINDOW(EditsTest, LosingTheFocusIsToldInItsTurn) {
  controls().SetControlFocus(Window(), kNameEdit);
  QTest::keyClick(Line(kNameEdit), Qt::Key_Tab);
  EXPECT_TRUE(recorder.lines.empty()) << "not in the middle of the change";
  Settle();
  EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost"}));
}

IN_WINDOW(EditsTest, AnAreaShowsEachLineByItself) {
  EXPECT_EQ(static_cast<QPlainTextEdit*>(Widget(kArea))->document()->blockCount(), 2);
}

IN_WINDOW(EditsTest, LosingTheFocusComesBeforeTheClickThatTookIt) {
  controls().SetControlFocus(Window(), kNameEdit);
  QTest::mouseClick(Widget(kCheck), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  Widget(kNameEdit)->setFocus(Qt::TabFocusReason);
  recorder.lines.clear();
  Widget(kCheck)->setFocus(Qt::MouseFocusReason);
  QTest::keyClick(Widget(kCheck), Qt::Key_Space);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost", "108 clicked"}));
  Settle();
  EXPECT_TRUE(recorder.lines.empty()) << "told once";
}

}  // namespace
}  // namespace platform::qt
