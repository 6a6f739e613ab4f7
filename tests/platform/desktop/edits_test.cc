#include "desktop_fixture.h"

namespace platform {
namespace {

class EditCase : public DesktopTest {};

IN_WINDOW(EditCase, GiveBackWhatWasSet) {
  for (const char* text : {"", "plain", "\xC3\xBC", "\xFC", "two  blanks "}) {
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kNameEdit, text));
    EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), text);
  }
  EXPECT_TRUE(recorder.LinesOf(kNameEdit).empty()) << "the program's doing is no news";
}

IN_WINDOW(EditCase, TellOfEachChangeByThePerson) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "ab");
  controls().SetControlFocus(Window(), kNameEdit);
  Key(key::kEnd);
  Type("cd");
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "abcd");
  EXPECT_EQ(recorder.TakeLines(), (Lines{"101 changed", "101 changed"}));
}

IN_WINDOW(EditCase, TypingAfterBytesThatArentUtf8KeepsThem) {
  controls().SetDlgItemTextA(Window(), kNameEdit, "\xFC");
  controls().SetControlFocus(Window(), kNameEdit);
  Key(key::kEnd);
  Type("x");
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameEdit), "\xFCx");
}

IN_WINDOW(EditCase, AnEditForDigitsTakesThemAlone) {
  controls().SetControlFocus(Window(), kDigitsEdit);
  Key(key::kEnd);
  Type("1a2-3");
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kDigitsEdit), "123");
}

IN_WINDOW(EditCase, AReadOnlyOneCanBeReachedAndNotChanged) {
  EXPECT_TRUE(controls().SetControlFocus(Window(), kReadOnlyEdit));
  Key(key::kEnd);
  Type("x");
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kReadOnlyEdit), "fixed");
  EXPECT_TRUE(controls().SetDlgItemTextA(Window(), kReadOnlyEdit, "other"));
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kReadOnlyEdit), "other");
}

IN_WINDOW(EditCase, LosingTheFocusToTheProgramIsNoNews) {
  controls().SetControlFocus(Window(), kNameEdit);
  controls().SetControlFocus(Window(), kDigitsEdit);
  controls().EnableControl(Window(), kDigitsEdit, false);
  controls().SetControlFocus(Window(), kNameEdit);
  controls().ShowControl(Window(), kNameEdit, SW_HIDE);
  Settle();
  EXPECT_TRUE(recorder.lines.empty());
}

IN_WINDOW(EditCase, LosingTheFocusToThePersonIsTold) {
  controls().SetControlFocus(Window(), kNameEdit);
  Key(key::kTab);
  Settle();
  EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost"}));
}

IN_WINDOW(EditCase, LosingTheFocusComesBeforeTheClickThatTookIt) {
  controls().SetControlFocus(Window(), kNameEdit);
  ClickAt(kCheck, {5, 5});
  EXPECT_TRUE(controls().IsDlgButtonChecked(Window(), kCheck));
  EXPECT_EQ(recorder.TakeLines(), (Lines{"101 focus lost", "108 clicked"}));
}

IN_WINDOW(EditCase, AnAreaLeavesTabEnterAndEscToTheDialog) {
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kArea), "first\r\nsecond");
  controls().SetControlFocus(Window(), kArea);
  Key(key::kReturn);
  Key(key::kEscape);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"105 clicked", "2 clicked"}));
  Key(key::kTab);
  EXPECT_EQ(controls().GetControlFocus(Window()), kButton);
}

}  // namespace
}  // namespace platform
