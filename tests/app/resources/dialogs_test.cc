// What the tables say.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/platform/desktop.h"
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
      {kMainWindow, 102, "Kelvaro"},
      {kDefineControl, 134, "Define Control"},
      {kNewProfile, 137, "New Profile"},
      {kDeleteProfile, 138, "Delete Profile"},
      {kProfileName, 147, "Rename Profile"},
      {kShiftKeyRequired, 149, "Shift Key Required"},
      {kAdvancedSettings, 150, "Advanced Settings"},
      {kWelcome, 151, "Welcome to Kelvaro"},
      {kAutoDetectMode, 152, "Auto-Detect Mode"},
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
  ExpectControls(kMainWindow, {
                                  {1002, Label, "Profile"},
                                  {1001, DropList, "", platform::kStyleSorted},
                                  {1006, Button, "New..."},
                                  {1099, Button, "Delete..."},
                                  {1101, Button, "Copy..."},
                                  {1100, Button, "Rename..."},
                                  {1146, Button, "Help..."},
                                  {1000, TabControl, ""},
                              });
}

TEST(MainWindow, HasOneBoxAPageInTheOrderOfTheTabs) {
  std::vector<std::uint32_t> boxes;
  for (const View& page : Pages()) boxes.push_back(page.controls.front().id);
  EXPECT_EQ(boxes, (std::vector<std::uint32_t>{1015, 1017, 1045, 1047}));
}

TEST(MainWindow, HasTheListOfControlsAndItsButtonsOnTheFirstPage) {
  ExpectControls(kMainWindow, {
                                  {1004, Button, "New..."},
                                  {1005, Button, "Edit...", platform::kStyleDefault},
                                  {1136, Button, "Delete..."},
                                  {1115, Button, "Copy"},
                                  {1155, Button, "Paste"},
                                  {1156, PictureButton, "Move Up"},
                                  {1157, PictureButton, "Move Down"},
                                  {1003, ListView, "", platform::kStyleMultiSelect},
                              });
}

TEST(MainWindow, HasTheMouseControlsOnTheSecondPage) {
  std::vector<Wanted> wanted = {
      {1050, GroupBox, "Movement Sensitivity"},
      {1055, GroupBox, "Movement Axis Damper"},
      {1051, GroupBox, "Mouse Wheel Sensitivity"},
      {1083, GroupBox, "Mouse Wheel Axis Damper"},
      {1036, DrawnButton, "Test"},
      {1139, CheckBox, "Mouse Controls Always Active"},
  };
  for (std::uint32_t field = 1159; field <= 1164; ++field) {
    wanted.push_back({field, Edit, "", platform::kStyleReadOnly});
  }
  for (const std::uint32_t box : {1027, 1028, 1029, 1030, 1031, 1034}) {
    wanted.push_back({box, CheckBox, "Detect"});
  }
  for (const std::uint32_t slider : {1052, 1056, 1079, 1080})
    wanted.push_back({slider, Slider, ""});
  ExpectControls(kMainWindow, wanted);
}

TEST(MainWindow, PutsEachSliderInTheBoxThatTellsItsPosition) {
  const std::uint32_t kPairs[][2] = {{1052, 1050}, {1056, 1055}, {1079, 1083}, {1080, 1051}};
  for (const auto& [slider, box] : kPairs) {
    EXPECT_TRUE(Inside(*Find(kMainWindow, slider), *Find(kMainWindow, box))) << slider;
  }
}

TEST(MainWindow, PutsEachDetectBoxBesideItsField) {
  const std::uint32_t kPairs[][2] = {{1027, 1159}, {1028, 1160}, {1034, 1163},
                                     {1029, 1161}, {1030, 1162}, {1031, 1164}};
  for (const auto& [box, field] : kPairs) {
    const ControlTemplate& detect = *Find(kMainWindow, box);
    const ControlTemplate& edit = *Find(kMainWindow, field);
    EXPECT_GE(detect.x, edit.x + edit.width) << box;
    EXPECT_EQ(detect.y + detect.height / 2, edit.y + edit.height / 2) << box;
  }
}

TEST(MainWindow, HasTheDeviceAndItsPollingOnTheThirdPage) {
  ExpectControls(kMainWindow, {
                                  {1060, DropList, "", platform::kStyleSorted},
                                  {1170, Button, "Refresh Device List"},
                                  {1063, Label, ""},
                                  {1065, Label, ""},
                                  {1067, Label, ""},
                                  {1070, Label, ""},
                                  {1072, Label, ""},
                                  {1076, Edit, ""},
                                  {1077, Edit, ""},
                                  {1078, Button, "Defaults"},
                              });
}

TEST(MainWindow, NamesTheValuesOfTheDevice) {
  const struct {
    std::uint32_t value;
    const char* label;
  } kLabels[] = {{1063, "Num Buttons"},
                 {1065, "Num Axis"},
                 {1067, "Num POVs"},
                 {1070, "Min Timer Interval"},
                 {1072, "Max Timer Interval"}};
  for (const auto& [value, label] : kLabels) {
    const ControlTemplate* found = Find(kMainWindow, value);
    EXPECT_EQ(Shown((found - 1)->text), label);
    EXPECT_EQ((found - 1)->y, found->y) << label;
  }
}

TEST(MainWindow, HasTheSettingsAndTheAddressesOnTheFourthPage) {
  ExpectControls(kMainWindow,
                 {
                     {1173, Picture, ""},
                     {1177, Label, ""},
                     {1171, CheckBox, "Start minimized"},
                     {1172, CheckBox, "Launch at startup"},
                     {1187, CheckBox, "Smart Check key entry checker"},
                     {1198, Button, "Advanced..."},
                     {1175, Link, KELVARO_WEB_ADDRESS},
                     {1176, Link, KELVARO_SUPPORT_ADDRESS},
                     {1178, Label, "Copyright (c) 2026 the Kelvaro authors"},
                     {1189, Label, "Free software under the MIT License, without any warranty."},
                 });
  EXPECT_EQ(Shown((Find(kMainWindow, 1175) - 1)->text), "web:");
  EXPECT_EQ(Shown((Find(kMainWindow, 1176) - 1)->text), "email:");
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
  using platform::kStyleDigits;
  using platform::kStyleHidden;
  ExpectControls(kDefineControl,
                 {
                     {1135, Label, "Description"},
                     {1083, Edit, ""},
                     {1116, GroupBox, "Trigger"},
                     {1128, Label, "on", kStyleHidden},
                     {1124, RadioButton, "Press", kStyleHidden},
                     {1125, RadioButton, "Release", kStyleHidden},
                     {1081, Edit, "", platform::kStyleReadOnly},
                     {1127, Label, "Detect"},
                     {1126, CheckBox, ""},
                     {1140, CheckBox, "Activate/Deactivate Mouse Controls"},
                     {1169, CheckBox, "Hold down all keys of a multi-key event until released"},
                     {1168, Label, "NOTE: Uppercase letters are preceded by a shift when replayed"},
                     {1131, Label, "Key(s)"},
                     {1093, Edit, ""},
                     {1145, Label, "Help: Special Key List"},
                     {1143, DropList, ""},
                     {1196, Edit, ""},
                     {1197, Edit, ""},
                     {1122, GroupBox, "Key Repeat (in milliseconds)"},
                     {1123, CheckBox, "Enable Repeat"},
                     {1133, Label, "Delay"},
                     {1095, Edit, "", kStyleDigits},
                     {1134, Label, "Speed"},
                     {1096, Edit, "", kStyleDigits},
                     {1113, Button, "Defaults"},
                     {1146, Button, "Help..."},
                     {platform::IDOK, Button, "OK", platform::kStyleDefault},
                     {platform::IDCANCEL, Button, "Cancel"},
                 });
  EXPECT_TRUE(Shows(kDefineControl, "Key Timings (in milliseconds)"));
  EXPECT_TRUE(Shows(kDefineControl,
                    "NOTE: Key timings are generally only necessary for applications that do not "
                    "use buffered input."));
  EXPECT_EQ(Shown((Find(kDefineControl, 1196) - 1)->text), "Key hold time");
  EXPECT_EQ(Shown((Find(kDefineControl, 1197) - 1)->text), "Key release pause");
}

TEST(DefineControl, PutsEachControlInTheGroupThatItBelongsTo) {
  const struct {
    std::uint32_t group;
    std::vector<std::uint32_t> controls;
  } kGroups[] = {{1116, {1081, 1127, 1126, 1128, 1124, 1125}},
                 {1122, {1123, 1133, 1095, 1134, 1096, 1113}}};
  for (const auto& [group, controls] : kGroups) {
    for (const std::uint32_t id : controls) {
      EXPECT_TRUE(Inside(*Find(kDefineControl, id), *Find(kDefineControl, group))) << id;
    }
  }
}

TEST(DefineControl, PutsTheTriggerLeftOfItsDetectBox) {
  const ControlTemplate& trigger = *Find(kDefineControl, 1081);
  EXPECT_GE(Find(kDefineControl, 1127)->x, trigger.x + trigger.width);
  EXPECT_GE(Find(kDefineControl, 1126)->x, trigger.x + trigger.width);
}

TEST(DefineControl, LeavesNoGapInARowForTheHiddenControls) {
  for (const std::uint32_t hidden : {1128, 1124, 1125}) {
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
  ExpectControls(
      kNewProfile,
      {{1137, Edit, ""}, {IDOK, Button, "OK", kStyleDefault}, {IDCANCEL, Button, "Cancel"}});
  EXPECT_TRUE(Shows(kNewProfile, "Enter New Profile Name"));

  ExpectControls(kDeleteProfile, {{1138, Label, ""},
                                  {IDOK, Button, "Yes, Delete It"},
                                  {IDCANCEL, Button, "No!", kStyleDefault}});
  EXPECT_TRUE(Shows(kDeleteProfile, "Delete Profile:"));
  EXPECT_TRUE(Shows(kDeleteProfile, "Are you sure?"));

  ExpectControls(kProfileName, {{1157, Label, ""},
                                {1137, Edit, ""},
                                {IDOK, Button, "OK", kStyleDefault},
                                {IDCANCEL, Button, "Cancel"}});
  EXPECT_TRUE(Shows(kProfileName, "Enter a new name for this profile"));

  ExpectControls(kShiftKeyRequired, {{kDontShowAgain, CheckBox, "Don't show this again"},
                                     {IDOK, Button, "Yes", kStyleDefault},
                                     {IDCANCEL, Button, "No"}});
  EXPECT_TRUE(Shows(kShiftKeyRequired,
                    "You have entered one or more keys that require a shift key press in order to "
                    "replay properly. Are you sure you want to use an uppercase character in this "
                    "control?"));

  ExpectControls(kAdvancedSettings, {{1199, CheckBox, "Auto-detect device plugin"},
                                     {IDOK, Button, "OK", kStyleDefault},
                                     {IDCANCEL, Button, "Cancel"}});

  ExpectControls(kWelcome, {{kWelcomePicture, Picture, ""},
                            {1200, TextArea, ""},
                            {IDOK, Button, "Close", kStyleDefault}});

  ExpectControls(kAutoDetectMode, {{kDontShowAgain, CheckBox, "Don't show this again"},
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
  const ControlTemplate& picture = *Find(kWelcome, kWelcomePicture);
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
