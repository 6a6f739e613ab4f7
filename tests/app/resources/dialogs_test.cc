// What the tables say.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/desktop.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/app/resources/dialog_tables.h"

namespace kelvaro::resources {
namespace {

using enum ControlKind;

struct Wanted {
  std::uint32_t id;
  ControlKind kind;
  const char* text;
  std::uint32_t style = 0;
};

void ExpectControls(const DialogTemplate& dialog, const std::vector<Wanted>& wanted) {
  for (const Wanted& control : wanted) {
    SCOPED_TRACE(control.id);
    const ControlTemplate* found = Find(dialog, control.id);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->kind, control.kind);
    EXPECT_EQ(Shown(found->text), control.text);
    EXPECT_EQ(found->style & ~platform::kStyleWrap, control.style);
  }
}

// Whether a label, group box or check box shows that text.
bool Shows(const DialogTemplate& dialog, const std::string& text) {
  for (const ControlTemplate& control : dialog.controls) {
    if (Shown(control.text) == text) return true;
  }
  return false;
}

TEST(Dialogs, AreNineWithTheirNumbersAndTitles) {
  const struct {
    const DialogTemplate& dialog;
    std::uint32_t id;
    const char* title;
  } kDialogs[] = {
      {kMainWindow, main_window::kDialog, "Kelvaro"},
      {kDefineControl, define_control::kDialog, "Define Control"},
      {kNewProfile, new_profile::kDialog, "New Profile"},
      {kDeleteProfile, delete_profile::kDialog, "Delete Profile"},
      {kProfileName, profile_name::kDialog, "Rename Profile"},
      {kShiftKeyRequired, shift_key_required::kDialog, "Shift Key Required"},
      {kAdvancedSettings, advanced_settings::kDialog, "Advanced Settings"},
      {kWelcome, welcome::kDialog, "Welcome to Kelvaro"},
      {kAutoDetectMode, auto_detect_mode::kDialog, "Auto-Detect Mode"},
  };
  ASSERT_EQ(Dialogs().size(), 9u);
  for (std::size_t i = 0; i < 9; ++i) {
    EXPECT_EQ(Dialogs()[i], &kDialogs[i].dialog);
    EXPECT_EQ(kDialogs[i].dialog.id, kDialogs[i].id);
    EXPECT_STREQ(kDialogs[i].dialog.title, kDialogs[i].title);
  }
}

TEST(MainWindow, CanBeResizedMinimisedAndMaximised) {
  EXPECT_EQ(kMainWindow.style, platform::kWindowResizable | platform::kWindowMinimiseBox |
                                   platform::kWindowMaximiseBox);
}

TEST(MainWindow, HasTheRowOfProfilesAboveTheTabs) {
  using namespace main_window;
  ExpectControls(kMainWindow, {
                                  {kProfileLabel, Label, "Profile"},
                                  {kProfileList, DropList, "", platform::kStyleSorted},
                                  {main_window::kNewProfile, Button, "New..."},
                                  {main_window::kDeleteProfile, Button, "Delete..."},
                                  {kCopyProfile, Button, "Copy..."},
                                  {kRenameProfile, Button, "Rename..."},
                                  {kHelp, Button, "Help..."},
                                  {kTabControl, TabControl, ""},
                              });
}

TEST(MainWindow, HasOneBoxAPageInTheOrderOfTheTabs) {
  using namespace main_window;
  std::vector<std::uint32_t> boxes;
  for (const View& page : Pages()) boxes.push_back(page.controls.front().id);
  EXPECT_EQ(boxes, (std::vector<std::uint32_t>{kControlPageBox, kMousePageBox, kDevicePageBox,
                                               kSettingsPageBox}));
}

TEST(MainWindow, HasTheListOfControlsAndItsButtonsOnTheFirstPage) {
  using namespace main_window;
  ExpectControls(kMainWindow, {
                                  {kNewControl, Button, "New..."},
                                  {kEditControl, Button, "Edit...", platform::kStyleDefault},
                                  {kDeleteControls, Button, "Delete..."},
                                  {kCopyControls, Button, "Copy"},
                                  {kPasteControls, Button, "Paste"},
                                  {kMoveUp, PictureButton, "Move Up"},
                                  {kMoveDown, PictureButton, "Move Down"},
                                  {kControlList, ListView, "", platform::kStyleMultiSelect},
                              });
}

TEST(MainWindow, HasTheMouseControlsOnTheSecondPage) {
  using namespace main_window;
  std::vector<Wanted> wanted = {
      {kMovementSensitivityFrame, GroupBox, "Movement Sensitivity"},
      {kMovementDamperFrame, GroupBox, "Movement Axis Damper"},
      {kWheelSensitivityFrame, GroupBox, "Mouse Wheel Sensitivity"},
      {kWheelDamperFrame, GroupBox, "Mouse Wheel Axis Damper"},
      {kTestMode, DrawnButton, "Test"},
      {kMouseAlwaysActive, CheckBox, "Mouse Controls Always Active"},
  };
  for (std::uint32_t field = kMouseX; field <= kRightButton; ++field) {
    wanted.push_back({field, Edit, "", platform::kStyleReadOnly});
  }
  for (const std::uint32_t box : {kDetectMouseX, kDetectMouseY, kDetectLeftButton,
                                  kDetectMiddleButton, kDetectRightButton, kDetectMouseWheel}) {
    wanted.push_back({box, CheckBox, "Detect"});
  }
  for (const std::uint32_t slider :
       {kMovementSensitivity, kMovementDamper, kWheelDamper, kWheelSensitivity})
    wanted.push_back({slider, Slider, ""});
  ExpectControls(kMainWindow, wanted);
}

TEST(MainWindow, PutsEachSliderInTheBoxThatTellsItsPosition) {
  using namespace main_window;
  const std::uint32_t kPairs[][2] = {{kMovementSensitivity, kMovementSensitivityFrame},
                                     {kMovementDamper, kMovementDamperFrame},
                                     {kWheelDamper, kWheelDamperFrame},
                                     {kWheelSensitivity, kWheelSensitivityFrame}};
  for (const auto& [slider, box] : kPairs) {
    EXPECT_TRUE(Inside(*Find(kMainWindow, slider), *Find(kMainWindow, box))) << slider;
  }
}

TEST(MainWindow, PutsEachDetectBoxBesideItsField) {
  using namespace main_window;
  const std::uint32_t kPairs[][2] = {{kDetectMouseX, kMouseX},
                                     {kDetectMouseY, kMouseY},
                                     {kDetectMouseWheel, kMouseWheel},
                                     {kDetectLeftButton, kLeftButton},
                                     {kDetectMiddleButton, kMiddleButton},
                                     {kDetectRightButton, kRightButton}};
  for (const auto& [box, field] : kPairs) {
    const ControlTemplate& detect = *Find(kMainWindow, box);
    const ControlTemplate& edit = *Find(kMainWindow, field);
    EXPECT_GE(detect.x, edit.x + edit.width) << box;
    EXPECT_EQ(detect.y + detect.height / 2, edit.y + edit.height / 2) << box;
  }
}

TEST(MainWindow, HasTheDeviceAndItsPollingOnTheThirdPage) {
  using namespace main_window;
  ExpectControls(kMainWindow, {
                                  {kDeviceList, DropList, "", platform::kStyleSorted},
                                  {kRefreshDeviceList, Button, "Refresh Device List"},
                                  {kNumButtons, Label, ""},
                                  {kNumAxis, Label, ""},
                                  {kNumPovs, Label, ""},
                                  {kTimerMin, Label, ""},
                                  {kTimerMax, Label, ""},
                                  {kInterval, Edit, ""},
                                  {kRate, Edit, ""},
                                  {kDefaultRate, Button, "Defaults"},
                              });
}

TEST(MainWindow, NamesTheValuesOfTheDevice) {
  using namespace main_window;
  const struct {
    std::uint32_t value;
    const char* label;
  } kLabels[] = {{kNumButtons, "Num Buttons"},
                 {kNumAxis, "Num Axis"},
                 {kNumPovs, "Num POVs"},
                 {kTimerMin, "Min Timer Interval"},
                 {kTimerMax, "Max Timer Interval"}};
  for (const auto& [value, label] : kLabels) {
    const ControlTemplate* found = Find(kMainWindow, value);
    EXPECT_EQ(Shown((found - 1)->text), label);
    EXPECT_EQ((found - 1)->y, found->y) << label;
  }
}

TEST(MainWindow, HasTheSettingsAndTheAddressesOnTheFourthPage) {
  using namespace main_window;
  ExpectControls(kMainWindow, {
                                  {kBanner, Picture, ""},
                                  {kVersionText, Label, ""},
                                  {kStartMinimized, CheckBox, "Start minimized"},
                                  {kLaunchAtStartup, CheckBox, "Launch at startup"},
                                  {kSmartCheck, CheckBox, "Smart Check key entry checker"},
                                  {kAdvanced, Button, "Advanced..."},
                                  {kWebLink, Link, KELVARO_WEB_ADDRESS},
                                  {kMailLink, Link, KELVARO_SUPPORT_ADDRESS},
                                  {kCopyright, Label, "Copyright (c) 2026 the Kelvaro authors"},
                                  {kLicense, Label,
                                   "Free software under the MIT License, without any warranty."},
                              });
  EXPECT_EQ(Shown((Find(kMainWindow, kWebLink) - 1)->text), "web:");
  EXPECT_EQ(Shown((Find(kMainWindow, kMailLink) - 1)->text), "email:");
}

TEST(MainWindow, DrawsARuleBehindTheHeadingsOfTheSettings) {
  for (const char* heading : {"Settings", "Contact"}) {
    bool found = false;
    for (const ControlTemplate& control : kMainWindow.controls) {
      if (Shown(control.text) != heading) continue;
      found = true;
      const ControlTemplate& rule = *(&control + 1);
      EXPECT_EQ(rule.kind, Rule);
      EXPECT_GT(rule.x, control.x + control.width);
      EXPECT_EQ(rule.y + rule.height / 2, control.y + control.height / 2);
    }
    EXPECT_TRUE(found) << heading;
  }
}

TEST(DefineControl, HasAllItsControls) {
  using namespace define_control;
  using platform::kStyleDigits;
  using platform::kStyleHidden;
  ExpectControls(
      kDefineControl,
      {
          {kDescriptionLabel, Label, "Description"},
          {kDescriptionText, Edit, ""},
          {kTriggerFrame, GroupBox, "Trigger"},
          {kOnLabel, Label, "on", kStyleHidden},
          {kPress, RadioButton, "Press", kStyleHidden},
          {kRelease, RadioButton, "Release", kStyleHidden},
          {kTriggerText, Edit, "", platform::kStyleReadOnly},
          {kDetectLabel, Label, "Detect"},
          {kDetectTrigger, CheckBox, ""},
          {kToggleMouseCheck, CheckBox, "Activate/Deactivate Mouse Controls"},
          {kHoldAllKeys, CheckBox, "Hold down all keys of a multi-key event until released"},
          {kUppercaseNote, Label, "NOTE: Uppercase letters are preceded by a shift when replayed"},
          {kKeysLabel, Label, "Key(s)"},
          {kKeysText, Edit, ""},
          {kSpecialKeyLabel, Label, "Help: Special Key List"},
          {kSpecialKeyList, DropList, ""},
          {kHoldValue, Edit, ""},
          {kPauseValue, Edit, ""},
          {kRepeatFrame, GroupBox, "Key Repeat (in milliseconds)"},
          {kRepeatCheck, CheckBox, "Enable Repeat"},
          {kDelayLabel, Label, "Delay"},
          {kDelayValue, Edit, "", kStyleDigits},
          {kSpeedLabel, Label, "Speed"},
          {kSpeedValue, Edit, "", kStyleDigits},
          {kDefaults, Button, "Defaults"},
          {kHelp, Button, "Help..."},
          {platform::IDOK, Button, "OK", platform::kStyleDefault},
          {platform::IDCANCEL, Button, "Cancel"},
      });
  EXPECT_TRUE(Shows(kDefineControl, "Key Timings (in milliseconds)"));
  EXPECT_TRUE(Shows(kDefineControl,
                    "NOTE: Key timings are generally only necessary for applications that do not "
                    "use buffered input."));
  EXPECT_EQ(Shown((Find(kDefineControl, kHoldValue) - 1)->text), "Key hold time");
  EXPECT_EQ(Shown((Find(kDefineControl, kPauseValue) - 1)->text), "Key release pause");
}

TEST(DefineControl, PutsEachControlInTheGroupThatItBelongsTo) {
  using namespace define_control;
  const struct {
    std::uint32_t group;
    std::vector<std::uint32_t> controls;
  } kGroups[] = {
      {kTriggerFrame, {kTriggerText, kDetectLabel, kDetectTrigger, kOnLabel, kPress, kRelease}},
      {kRepeatFrame,
       {kRepeatCheck, kDelayLabel, kDelayValue, kSpeedLabel, kSpeedValue, kDefaults}}};
  for (const auto& [group, controls] : kGroups) {
    for (const std::uint32_t id : controls) {
      EXPECT_TRUE(Inside(*Find(kDefineControl, id), *Find(kDefineControl, group))) << id;
    }
  }
}

TEST(DefineControl, PutsTheTriggerLeftOfItsDetectBox) {
  using namespace define_control;
  const ControlTemplate& trigger = *Find(kDefineControl, kTriggerText);
  EXPECT_GE(Find(kDefineControl, kDetectLabel)->x, trigger.x + trigger.width);
  EXPECT_GE(Find(kDefineControl, kDetectTrigger)->x, trigger.x + trigger.width);
}

TEST(DefineControl, LeavesNoGapInARowForTheHiddenControls) {
  using namespace define_control;
  for (const std::uint32_t hidden : {kOnLabel, kPress, kRelease}) {
    const ControlTemplate& place = *Find(kDefineControl, hidden);
    for (const ControlTemplate& control : kDefineControl.controls) {
      if (control.kind == GroupBox || control.style & platform::kStyleHidden) continue;
      const bool sameRow =
          control.y < place.y + place.height && place.y < control.y + control.height;
      EXPECT_FALSE(sameRow && control.x > place.x) << control.id;
    }
  }
}

TEST(SmallDialogs, HaveTheirControls) {
  using platform::IDCANCEL;
  using platform::IDOK;
  using platform::kStyleDefault;
  ExpectControls(kNewProfile, {{new_profile::kName, Edit, ""},
                               {IDOK, Button, "OK", kStyleDefault},
                               {IDCANCEL, Button, "Cancel"}});
  EXPECT_TRUE(Shows(kNewProfile, "Enter New Profile Name"));

  ExpectControls(kDeleteProfile, {{delete_profile::kName, Label, ""},
                                  {IDOK, Button, "Yes, Delete It"},
                                  {IDCANCEL, Button, "No!", kStyleDefault}});
  EXPECT_TRUE(Shows(kDeleteProfile, "Delete Profile:"));
  EXPECT_TRUE(Shows(kDeleteProfile, "Are you sure?"));

  ExpectControls(kProfileName, {{profile_name::kTopLine, Label, ""},
                                {profile_name::kName, Edit, ""},
                                {IDOK, Button, "OK", kStyleDefault},
                                {IDCANCEL, Button, "Cancel"}});
  EXPECT_TRUE(Shows(kProfileName, "Enter a new name for this profile"));

  ExpectControls(kShiftKeyRequired,
                 {{shift_key_required::kDontShowAgain, CheckBox, "Don't show this again"},
                  {IDOK, Button, "Yes", kStyleDefault},
                  {IDCANCEL, Button, "No"}});
  EXPECT_TRUE(Shows(kShiftKeyRequired,
                    "You have entered one or more keys that require a shift key press in order to "
                    "replay properly. Are you sure you want to use an uppercase character in this "
                    "control?"));

  ExpectControls(kAdvancedSettings, {{advanced_settings::kAutodetectDevicePlugin, CheckBox,
                                      "Auto-detect device plugin"},
                                     {IDOK, Button, "OK", kStyleDefault},
                                     {IDCANCEL, Button, "Cancel"}});

  ExpectControls(kWelcome, {{welcome::kPicture, Picture, ""},
                            {welcome::kText, TextArea, ""},
                            {IDOK, Button, "Close", kStyleDefault}});

  ExpectControls(kAutoDetectMode,
                 {{auto_detect_mode::kDontShowAgain, CheckBox, "Don't show this again"},
                  {IDOK, Button, "OK", kStyleDefault}});
  EXPECT_TRUE(Shows(kAutoDetectMode,
                    "This will detect movement or button presses on your input device, and make "
                    "the appropriate assignment. All control input is captured while in this "
                    "mode."));
  EXPECT_TRUE(Shows(kAutoDetectMode,
                    "You can exit auto-detect mode by pressing the spacebar on your keyboard, by "
                    "pressing any two buttons simultaneously on your controller, or by unchecking "
                    "the detect box with your mouse."));
}

TEST(SmallDialogs, PutTheWelcomesPictureOnTop) {
  const ControlTemplate& picture = *Find(kWelcome, welcome::kPicture);
  for (const ControlTemplate& control : kWelcome.controls) {
    if (&control != &picture) {
      EXPECT_GE(control.y, picture.y + picture.height) << control.id;
    }
  }
}

TEST(FloaterMenu, OffersToExitAndToShowTheWindow) {
  const auto menu = FloaterMenu();
  ASSERT_EQ(menu.size(), 3u);
  EXPECT_STREQ(menu[0].text, "Exit");
  EXPECT_EQ(menu[0].command, 32772u);
  EXPECT_EQ(menu[1].text, nullptr);
  EXPECT_STREQ(menu[2].text, "Show Kelvaro");
  EXPECT_EQ(menu[2].command, 32771u);
}

TEST(Addresses, AreThoseOfTheBuild) {
  EXPECT_STREQ(kWebAddress, KELVARO_WEB_ADDRESS);
  EXPECT_STREQ(kSupportAddress, KELVARO_SUPPORT_ADDRESS);
}

}  // namespace
}  // namespace kelvaro::resources
