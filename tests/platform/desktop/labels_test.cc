#include "desktop_fixture.h"

namespace platform {
namespace {

class LabelCase : public DesktopTest {};

IN_WINDOW(LabelCase, ALinkIsReachedAndPressedByKeyboard) {
  controls().SetControlFocus(Window(), kSlider);
  Key(key::kTab);
  EXPECT_EQ(controls().GetControlFocus(Window()), kLink);
  recorder.lines.clear();
  Key(key::kSpace);
  Key(key::kReturn);
  Click(kLink);
  EXPECT_EQ(recorder.TakeLines(), (Lines{"120 clicked", "120 clicked", "120 clicked"}));
}

IN_WINDOW(LabelCase, AMnemonicGoesToTheNextControlThatTakesTheFocus) {
  controls().SetControlFocus(Window(), kCheck);
  Key('N', kAlt);
  EXPECT_EQ(controls().GetControlFocus(Window()), kNameEdit);
  Key('G', kAlt);
  EXPECT_EQ(controls().GetControlFocus(Window()), kRadioC);
}

IN_WINDOW(LabelCase, AHiddenLabelsMnemonicIsDead) {
  controls().SetControlFocus(Window(), kCheck);
  controls().ShowControl(Window(), kNameLabel, SW_HIDE);
  Key('N', kAlt);
  EXPECT_EQ(controls().GetControlFocus(Window()), kCheck);
}

IN_WINDOW(LabelCase, GivesBackItsTextAsItWasSet) {
  EXPECT_EQ(controls().GetDlgItemTextA(Window(), kNameLabel), "&Name");
  for (const std::uint32_t id : {kNameLabel, kLink, kGroup, kCheck, kNameEdit}) {
    EXPECT_TRUE(controls().SetDlgItemTextA(Window(), id, "Tom && Jerry & \xFC"));
    EXPECT_EQ(controls().GetDlgItemTextA(Window(), id), "Tom && Jerry & \xFC");
  }
}

IN_WINDOW(LabelCase, AClickOnALabelIsTold) {
  Click(kNameLabel);
  EXPECT_EQ(recorder.LinesOf(kNameLabel), (Lines{"100 clicked"}));
}

}  // namespace
}  // namespace platform
