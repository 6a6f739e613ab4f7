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

// The controls in their order, which is that of the Tab key and puts them on their pages: number,
// kind, style, and the text as it is shown. Whether an address is a link is up to the build.
std::uint64_t FingerprintOf(const DialogTemplate& dialog) {
  std::vector<std::string> words;
  for (const ControlTemplate& control : dialog.controls) {
    const bool address =
        control.id == main_window::kWebLink || control.id == main_window::kMailLink;
    const auto kind = static_cast<int>(address ? Link : control.kind);
    words.insert(words.end(), {std::to_string(control.id), std::to_string(kind),
                               std::to_string(control.style & ~platform::kStyleWrap),
                               address ? "an address of the build's" : Shown(control.text)});
  }
  return Fingerprint(words);
}

// Which places make sense is asked in dialog_places_test.cc. This is what was drawn, so that a slip
// of one unit in a table, which every rule allows, is seen as well.
std::uint64_t PlacesOf(const DialogTemplate& dialog) {
  std::vector<std::string> words = {std::to_string(dialog.width), std::to_string(dialog.height)};
  for (const ControlTemplate& control : dialog.controls) {
    words.insert(words.end(), {std::to_string(control.x), std::to_string(control.y),
                               std::to_string(control.width), std::to_string(control.height)});
  }
  return Fingerprint(words);
}

TEST(Dialogs, AreNineWithTheirNumbersTitlesControlsAndPlaces) {
  const struct {
    const DialogTemplate& dialog;
    std::uint32_t id;
    const char* title;
    std::uint64_t controls;
    std::uint64_t places;
  } kDialogs[] = {
      {kMainWindow, 102, "Kelvaro", 0xE342DD64039FC3D4u, 0x80C9C15B0909839Bu},
      {kDefineControl, 134, "Define Control", 0x2CA3D9B8DA00B5A0u, 0xE3ADD380D4538FEEu},
      {kNewProfile, 137, "New Profile", 0xAC8A19732D88D1F8u, 0xDB8B819080EE12AFu},
      {kDeleteProfile, 138, "Delete Profile", 0xEC21520775E143EAu, 0xC1ADDE47DD769B6Fu},
      {kProfileName, 147, "Rename Profile", 0xA16B7D08C6E3EC2u, 0xC56F5E36A8BE2479u},
      {kShiftKeyRequired, 149, "Shift Key Required", 0xAE1F166608F54001u, 0xC3F98372E2230F3Du},
      {kAdvancedSettings, 150, "Advanced Settings", 0x1B5397154FF7952Cu, 0xEC23ABC1541718C6u},
      {kWelcome, 151, "Welcome to Kelvaro", 0xE3A15170B6BF3126u, 0xCC11773F3913DE81u},
      {kAutoDetectMode, 152, "Auto-Detect Mode", 0xBD4FBAAA7A1E7979u, 0x90535B15895BB8D8u},
  };
  ASSERT_EQ(Dialogs().size(), 9u);
  for (std::size_t i = 0; i < 9; ++i) {
    EXPECT_EQ(Dialogs()[i], &kDialogs[i].dialog);
    EXPECT_EQ(kDialogs[i].dialog.id, kDialogs[i].id);
    EXPECT_STREQ(kDialogs[i].dialog.title, kDialogs[i].title);
    EXPECT_EQ(FingerprintOf(kDialogs[i].dialog), kDialogs[i].controls) << kDialogs[i].title;
    EXPECT_EQ(PlacesOf(kDialogs[i].dialog), kDialogs[i].places) << kDialogs[i].title;
  }
}

TEST(Dialogs, AreOfOneSizeButForTheMainWindowAndDefineControl) {
  for (const DialogTemplate* dialog : Dialogs()) {
    const std::uint32_t style = dialog == &kMainWindow
                                    ? platform::kWindowResizable | platform::kWindowMinimiseBox |
                                          platform::kWindowMaximiseBox
                                : dialog == &kDefineControl ? platform::kWindowResizable
                                                            : 0;
    EXPECT_EQ(dialog->style, style) << dialog->title;
  }
}

TEST(MainWindow, HasOneBoxAPageInTheOrderOfTheTabs) {
  using namespace main_window;
  std::vector<std::uint32_t> boxes;
  for (const View& page : Pages()) boxes.push_back(page.controls.front().id);
  EXPECT_EQ(boxes, (std::vector<std::uint32_t>{kControlPageBox, kMousePageBox, kDevicePageBox,
                                               kSettingsPageBox}));
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

TEST(MainWindow, PutsEachValueOfTheDeviceBehindItsLabel) {
  using namespace main_window;
  for (const std::uint32_t value : {kNumButtons, kNumAxis, kNumPovs, kTimerMin, kTimerMax}) {
    const ControlTemplate* found = Find(kMainWindow, value);
    EXPECT_EQ((found - 1)->kind, Label);
    EXPECT_EQ((found - 1)->y, found->y) << value;
  }
}

TEST(MainWindow, HasTheAddressesOnTheFourthPage) {
  using namespace main_window;
  for (const auto& [id, address] : {std::pair{kWebLink, std::string(KELVARO_WEB_ADDRESS)},
                                    std::pair{kMailLink, std::string(KELVARO_SUPPORT_ADDRESS)}}) {
    EXPECT_EQ(Find(kMainWindow, id)->text, address.empty() ? "none in this build" : address);
    EXPECT_EQ(Find(kMainWindow, id)->kind, address.empty() ? Label : Link);
  }
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
