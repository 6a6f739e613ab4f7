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

WINDOW_TEST(EditsTest, ATextAreaShowsTheFocus) {
  Dialog()->setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
  controls().SetControlFocus(Window(), kNameEdit);
  const QImage without = Widget(kArea)->grab().toImage();
  Widget(kArea)->setFocus(Qt::TabFocusReason);
  EXPECT_NE(Widget(kArea)->grab().toImage(), without);
}

WINDOW_TEST(EditsTest, ATextThatAScreenReaderPutsThereCounts) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "before");
  EXPECT_TRUE(recorder.lines.empty()) << "the program's own doing is no news";
  QAccessible::queryAccessibleInterface(Widget(kNameEdit))
      ->setText(QAccessible::Value, QStringLiteral("spoken"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "spoken");
  EXPECT_EQ(recorder.TakeLines(), std::vector<std::string>{std::to_string(kNameEdit) + " changed"});
}

WINDOW_TEST(EditsTest, GiveBackWhatWasSet) {
  for (const char* text : {"", "plain", "\xC3\xBC", "\xFC", "two  blanks "}) {
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kNameEdit, text));
    EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), text);
  }
  EXPECT_TRUE(recorder.LinesOf(kNameEdit).empty()) << "the program's doing is no news";
}

WINDOW_TEST(EditsTest, AFieldToReadDoesNotLookAsIfOneCouldTypeIntoIt) {
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
    EXPECT_TRUE(QTest::qWaitForWindowActive(Dialog()));
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

WINDOW_TEST(EditsTest, TellOfEachChangeByThePerson) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "ab");
  QTest::keyClicks(Line(kNameEdit), QStringLiteral("cd"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "abcd");
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"101 changed", "101 changed"}));
}

WINDOW_TEST(EditsTest, TypedTextIsUtf8) {
  Line(kNameEdit)->insert(QStringLiteral("ü"));
  QTest::keyClicks(Line(kNameEdit), QStringLiteral("x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "\xC3\xBCx");
}

WINDOW_TEST(EditsTest, TypingAfterBytesThatArentUtf8KeepsThem) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "\xFC");
  QTest::keyClicks(Line(kNameEdit), QStringLiteral("x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "\xFCx");
}

WINDOW_TEST(EditsTest, AnEditForDigitsTakesThemAlone) {
  QTest::keyClicks(Line(kDigitsEdit), QStringLiteral("1a2-3"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kDigitsEdit), "123");
}

WINDOW_TEST(EditsTest, AReadOnlyOneCanBeReachedAndNotChanged) {
  EXPECT_TRUE(controls().SetControlFocus(Window(), kReadOnlyEdit));
  QTest::keyClicks(Line(kReadOnlyEdit), QStringLiteral("x"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kReadOnlyEdit), "fixed");
  EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kReadOnlyEdit, "other"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kReadOnlyEdit), "other");
}

WINDOW_TEST(EditsTest, TheCaretStandsBehindThatManyBytes) {
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

WINDOW_TEST(EditsTest, LosingTheFocusToThePersonIsToldInItsTurn) {
  controls().SetControlFocus(Window(), kNameEdit);
  QTest::keyClick(Line(kNameEdit), Qt::Key_Tab);
  EXPECT_TRUE(recorder.lines.empty()) << "not in the middle of the change";
  Settle();
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"101 focus lost"}));
}

WINDOW_TEST(EditsTest, LosingTheFocusComesBeforeTheClickThatTookIt) {
  controls().SetControlFocus(Window(), kNameEdit);
  QTest::mouseClick(Widget(kCheck), Qt::LeftButton, {}, QPoint(5, 5));
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  Widget(kNameEdit)->setFocus(Qt::TabFocusReason);
  recorder.lines.clear();
  Widget(kCheck)->setFocus(Qt::MouseFocusReason);
  QTest::keyClick(Widget(kCheck), Qt::Key_Space);
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"101 focus lost", "108 clicked"}));
  Settle();
  EXPECT_TRUE(recorder.lines.empty()) << "told once";
}

WINDOW_TEST(EditsTest, LosingTheFocusToTheProgramIsNoNews) {
  controls().SetControlFocus(Window(), kNameEdit);
  controls().SetControlFocus(Window(), kDigitsEdit);
  controls().EnableControl(Window(), kDigitsEdit, false);
  controls().SetControlFocus(Window(), kNameEdit);
  controls().ShowControl(Window(), kNameEdit, SW_HIDE);
  Settle();
  EXPECT_TRUE(recorder.lines.empty());
}

WINDOW_TEST(EditsTest, AnAreaShowsItsLinesAndLeavesTabEnterAndEscToTheDialog) {
  auto* const area = static_cast<QPlainTextEdit*>(Widget(kArea));
  EXPECT_EQ(area->document()->blockCount(), 2);
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kArea), "first\r\nsecond");
  controls().SetControlFocus(Window(), kArea);
  QTest::keyClick(area, Qt::Key_Return);
  QTest::keyClick(area, Qt::Key_Escape);
  EXPECT_EQ(recorder.TakeLines(), (std::vector<std::string>{"105 clicked", "2 clicked"}));
  QTest::keyClick(area, Qt::Key_Tab);
  EXPECT_EQ(controls().GetControlFocus(Window()), kButton);
}

}  // namespace
}  // namespace platform::qt
