// The dialogs of a question or two: what they show, and what each way out of them leaves behind.
// What their tables say stands in resources/dialogs_test.cc.
#include <gtest/gtest.h>

#include <string>

#include "app/dialogs/small_dialogs.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "tests/person/desktop_simulation.h"
#include "tests/person/screen.h"

namespace kelvaro {
namespace {

using platform::IDCANCEL;
using platform::IDOK;
using platform::simulation::Screen;
using Simulation = platform::simulation::DesktopSimulation;

// A dialog in front of the person, once it was opened.
template <class AnyDialog>
struct Shown {
  template <class... Arguments>
  explicit Shown(Arguments... arguments) : dialog(arguments...) {}
  ~Shown() { screen.Leave(); }

  Shown& Open() {
    screen.Start([this] { return dialog.DoModal(platform::kNoWindow); });
    return *this;
  }

  Simulation sim;
  Screen& screen = sim.Screen();
  AnyDialog dialog;
};

// ---- "New Profile"

class NewProfileDialogTest : public testing::Test, protected Shown<NewProfileDialog> {
 protected:
  NewProfileDialogTest() { Open(); }
  void ExpectTaken(const std::string& name) {
    EXPECT_EQ(screen.Result(), IDOK);
    EXPECT_EQ(Bytes(dialog.name), name);
    EXPECT_TRUE(screen.Boxes().empty());
  }
};

TEST_F(NewProfileDialogTest, AsksForANameInAnEmptyEdit) {
  EXPECT_EQ(screen.Front(), new_profile::kDialog);
  EXPECT_EQ(screen.Text(new_profile::kName), "");
  EXPECT_EQ(screen.Focus(), new_profile::kName);
}

TEST_F(NewProfileDialogTest, OKTakesTheName) {
  screen.Type(new_profile::kName, "My \"first\" Game");
  screen.Click(IDOK);
  ExpectTaken("My \"first\" Game");
}

TEST_F(NewProfileDialogTest, EnterIsOK) {
  screen.Type(new_profile::kName, "Game");
  screen.Press(screen.kEnter);
  ExpectTaken("Game");
}

TEST_F(NewProfileDialogTest, AnEmptyNameIsTakenToo) {
  screen.Click(IDOK);
  ExpectTaken("");
}

TEST_F(NewProfileDialogTest, CancelTakesNothing) {
  screen.Type(new_profile::kName, "Game");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_TRUE(dialog.name.IsEmpty());
}

// ---- For a copy, or to rename

class ProfileNameDialogTest : public testing::Test, protected Shown<ProfileNameDialog> {
 protected:
  ProfileNameDialogTest() : Shown("Copy Profile", "Copy profile", "Game") { Open(); }
  void ExpectTaken(const std::string& name) {
    EXPECT_EQ(screen.Result(), IDOK);
    EXPECT_EQ(Bytes(dialog.name), name);
  }
};

TEST_F(ProfileNameDialogTest, ShowsItsTitleItsTopLineAndTheOldName) {
  EXPECT_EQ(screen.Front(), profile_name::kDialog);
  EXPECT_EQ(screen.Title(), "Copy Profile");
  EXPECT_EQ(screen.Text(profile_name::kTopLine), "Copy profile \"Game\"");
  EXPECT_EQ(screen.Text(profile_name::kName), "Game");
  EXPECT_EQ(screen.Focus(), profile_name::kName);
}

TEST_F(ProfileNameDialogTest, WhatIsTypedFirstTakesThePlaceOfTheOldName) {
  screen.Press('Z');
  EXPECT_EQ(screen.Text(profile_name::kName), "z");
}

TEST(ProfileNameDialogTopLine, ShowsEachAmpersandOfTheName) {
  Shown<ProfileNameDialog> copy("Copy Profile", "Copy profile", "Tom && Jerry & Co");
  copy.Open();
  EXPECT_EQ(copy.screen.Text(profile_name::kTopLine), "Copy profile \"Tom && Jerry & Co\"");
  EXPECT_EQ(copy.screen.Text(profile_name::kName), "Tom && Jerry & Co");
}

TEST_F(ProfileNameDialogTest, OKTakesTheNewName) {
  screen.Type(profile_name::kName, "Other Game");
  screen.Click(IDOK);
  ExpectTaken("Other Game");
}

TEST_F(ProfileNameDialogTest, TheOldNameIsAName) {
  screen.Click(IDOK);
  ExpectTaken("Game");
}

TEST_F(ProfileNameDialogTest, ABlankIsNotEmpty) {
  screen.Type(profile_name::kName, " ");
  screen.Click(IDOK);
  ExpectTaken(" ");
}

TEST_F(ProfileNameDialogTest, AnEmptyNameIsRefusedAndAskedForAgain) {
  screen.Type(profile_name::kName, "");
  screen.FocusOn(IDCANCEL);
  screen.Click(IDOK);
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().owner, dialog.window);
  EXPECT_EQ(screen.Box().text, "Profile name cannot be blank");
  EXPECT_EQ(screen.Box().caption, "Missing Profile Name");
  EXPECT_EQ(screen.Box().type, platform::MB_OK);
  screen.Answer(IDOK);
  EXPECT_EQ(screen.Front(), profile_name::kDialog);
  EXPECT_EQ(screen.Focus(), profile_name::kName);
  EXPECT_EQ(Bytes(dialog.name), "Game");
  screen.Type(profile_name::kName, "Other");
  screen.Click(IDOK);
  ExpectTaken("Other");
}

TEST_F(ProfileNameDialogTest, CancelKeepsTheOldNameAndAsksNothing) {
  screen.Type(profile_name::kName, "");
  screen.Click(IDCANCEL);
  EXPECT_EQ(screen.Result(), IDCANCEL);
  EXPECT_EQ(Bytes(dialog.name), "Game");
  EXPECT_TRUE(screen.Boxes().empty());
}

// ---- "Delete Profile"

// What the dialog answers when the person leaves it like that.
std::int32_t Deletion(const std::string& name, void (*leave)(Screen&)) {
  Shown<DeleteProfileDialog> deletion(TextOf(name));
  deletion.Open();
  EXPECT_EQ(deletion.screen.Front(), delete_profile::kDialog);
  EXPECT_EQ(deletion.screen.Text(delete_profile::kName), "\"" + name + "\"");
  leave(deletion.screen);
  return deletion.screen.Result();
}

TEST(DeleteProfileDialog, ShowsTheNameInDoubleQuotesAndEachAmpersandOfIt) {
  for (const char* name : {"My Game", "Tom && Jerry & Co"})
    Deletion(name, [](Screen& screen) { screen.Close(); });
}

TEST(DeleteProfileDialog, DeletesOnYesAlone) {
  EXPECT_EQ(Deletion("Game", [](Screen& screen) { screen.Click(IDOK); }), IDOK);
  EXPECT_EQ(Deletion("Game", [](Screen& screen) { screen.Click(IDCANCEL); }), IDCANCEL);
  EXPECT_EQ(Deletion("Game", [](Screen& screen) { screen.Press(screen.kEnter); }), IDCANCEL);
  EXPECT_EQ(Deletion("Game", [](Screen& screen) { screen.Press(screen.kEsc); }), IDCANCEL);
  EXPECT_EQ(Deletion("Game", [](Screen& screen) { screen.Close(); }), IDCANCEL);
}

// ---- The two that need not be shown again

template <class AnyDialog>
struct Remindable {
  std::uint32_t number;
  std::uint32_t box;

  // Whether it isn't to be shown again when the box was clicked so often and then this button.
  void Expect(int clicks, std::uint32_t button, bool dontShowAgain) const {
    Shown<AnyDialog> reminder;
    reminder.Open();
    EXPECT_EQ(reminder.screen.Front(), number);
    EXPECT_FALSE(reminder.screen.Checked(box));
    for (int i = 0; i < clicks; ++i) reminder.screen.Click(box);
    if (button == IDCANCEL) {
      reminder.screen.Close();
    } else {
      reminder.screen.Click(button);
    }
    EXPECT_EQ(reminder.screen.Result(), button);
    EXPECT_EQ(reminder.dialog.dontShowAgain, dontShowAgain) << clicks << " " << button;
  }
  void ExpectTheBoxToBeTakenWhicheverWayItEnds() const {
    for (const std::uint32_t button : {IDOK, IDCANCEL}) {
      Expect(0, button, false);
      Expect(1, button, true);
      Expect(2, button, false);
    }
  }
};

TEST(ShiftKeyRequiredDialog, TakesTheBoxWhicheverWayItEnds) {
  Remindable<ShiftKeyRequiredDialog>{shift_key_required::kDialog,
                                     shift_key_required::kDontShowAgain}
      .ExpectTheBoxToBeTakenWhicheverWayItEnds();
}

TEST(AutoDetectModeDialog, TakesTheBoxWhicheverWayItEnds) {
  Remindable<AutoDetectModeDialog>{auto_detect_mode::kDialog, auto_detect_mode::kDontShowAgain}
      .ExpectTheBoxToBeTakenWhicheverWayItEnds();
}

TEST(ShiftKeyRequiredDialog, NoIsCancel) {
  Shown<ShiftKeyRequiredDialog> question;
  question.Open().screen.Click(IDCANCEL);
  EXPECT_EQ(question.screen.Result(), IDCANCEL);
}

// ---- "Advanced Settings"

constexpr std::uint32_t kBox = advanced_settings::kAutodetectDevicePlugin;

using AdvancedSettings = Shown<AdvancedSettingsDialog>;

TEST(AdvancedSettingsDialog, OpensWithTheSettingAsItIsAndOKTakesTheBox) {
  for (const bool before : {false, true}) {
    AdvancedSettings settings(before);
    settings.Open();
    EXPECT_EQ(settings.screen.Front(), advanced_settings::kDialog);
    EXPECT_EQ(settings.screen.Checked(kBox), before);
    settings.screen.Click(kBox);
    settings.screen.Click(IDOK);
    EXPECT_EQ(settings.screen.Result(), IDOK);
    EXPECT_EQ(settings.dialog.autodetectDevicePlugin, !before);
  }
}

TEST(AdvancedSettingsDialog, CancelChangesNothing) {
  AdvancedSettings settings(false);
  settings.Open().screen.Click(kBox);
  settings.screen.Click(IDCANCEL);
  EXPECT_EQ(settings.screen.Result(), IDCANCEL);
  EXPECT_FALSE(settings.dialog.autodetectDevicePlugin);
}

TEST(AdvancedSettingsDialog, HasATipOnItsBoxOnly) {
  AdvancedSettings settings(false);
  Screen& screen = settings.Open().screen;
  EXPECT_EQ(screen.Hover(kBox), resources::String(kBox));
  EXPECT_EQ(screen.ToolTipWidth(), 400);
  EXPECT_EQ(screen.ToolTipTime(), 10000);
  // Both have a text in another dialog.
  EXPECT_EQ(screen.Hover(IDOK), "");
  EXPECT_EQ(screen.Hover(IDCANCEL), "");
}

TEST(AdvancedSettingsDialog, WorksWithoutTips) {
  AdvancedSettings settings(false);
  settings.sim.FailNext("CreateToolTip");
  Screen& screen = settings.Open().screen;
  EXPECT_EQ(screen.Hover(kBox), "");
  screen.Click(kBox);
  screen.Click(IDOK);
  EXPECT_TRUE(settings.dialog.autodetectDevicePlugin);
}

// ---- "Welcome to Kelvaro"

class WelcomeDialogTest : public testing::Test, protected Shown<WelcomeDialog> {
 protected:
  WelcomeDialogTest() { Open(); }
};

TEST_F(WelcomeDialogTest, SaysThis) {
  EXPECT_EQ(screen.Front(), welcome::kDialog);
  EXPECT_EQ(
      screen.Text(welcome::kText),
      "\r\n                        Welcome to Kelvaro by Marnstone\r\n\r\n"
      "This utility gives you the ultimate control over your games by simulating keyboard and "
      "mouse input from your game pad or joystick. Per-game settings are stored in profiles. The "
      "included Rendlink utility enables you to start Kelvaro with your game in a single-step "
      "process.\r\n\r\n"
      "Example profiles are included. Before using an example profile you will need to associate "
      "a device with it, and without modification it probably won't work directly with your game "
      "device (the buttons and controls may be set wrong for your device and/or preferences). By "
      "looking at a few of the examples, and viewing the pop-up help for each control, you can "
      "jump right into creating profiles for your games. For more advanced options and detailed "
      "explanations, please refer to the included electronic help.\r\n\r\n"
      "Thank for trying this software, and we hope you enjoy using Kelvaro.");
}

TEST_F(WelcomeDialogTest, LooksLikeThis) {
  EXPECT_EQ(screen.Font(welcome::kText), "Arial 14 800");
  EXPECT_EQ(screen.TextColour(welcome::kText), platform::Rgb(0, 0, 64));
  EXPECT_EQ(screen.BackgroundColour(welcome::kText), platform::Rgb(255, 255, 255));
  EXPECT_EQ(screen.Picture(welcome::kPicture), 148u);
}

TEST_F(WelcomeDialogTest, CloseEndsIt) {
  screen.Click(IDOK);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), IDOK);
}

TEST_F(WelcomeDialogTest, EscEndsIt) {
  screen.Press(screen.kEsc);
  EXPECT_FALSE(screen.Running());
}

TEST(WelcomeDialogWithoutItsPicture, ComesUpAllTheSame) {
  Shown<WelcomeDialog> shown;
  shown.sim.FailAlways("LoadBitmapA");
  EXPECT_EQ(shown.Open().screen.Picture(welcome::kPicture), 0u);
  EXPECT_EQ(shown.screen.Font(welcome::kText), "Arial 14 800");
}

}  // namespace
}  // namespace kelvaro
