#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "app/resources/control_ids.h"
#include "app/start/window_messages.h"
#include "player.h"
#include "tests/host/files.h"
#include "tests/host/patience.h"
#include "tests/windows/own_kelvaroctl.h"

// Last.
#include "tests/windows/dinput8/pad_hands.h"
#include "tests/windows/hands.h"

namespace kelvaro::tests {
namespace {

class WindowsProgram : public ::testing::Test {
 protected:
  WindowsProgram() {
    ForgetSettings();
    std::filesystem::copy_file(KELVARO_PROGRAM, folder.In("kelvaro.exe"));
    std::filesystem::copy_file(KELVARO_DINPUT, folder.In("dinput8.dll"));
    std::filesystem::create_directory(folder.In("Profiles"));
  }
  ~WindowsProgram() override { ForgetSettings(); }

  // Past the welcome, with its main window up.
  void Start(const std::string& arguments = "") {
    MarkAsWelcomed();
    program = std::make_unique<Program>(place, arguments);
    window = program->Await("Kelvaro");
    ASSERT_NE(window, 0u);
  }
  // Into a folder whose path has up to 50 characters fewer.
  void MoveProgram(std::size_t length) {
    while (place.size() + 50 < length) place += '\\' + std::string(49, 'd');
    std::filesystem::create_directories(place + "\\Profiles");
    for (const char* const file : {"\\kelvaro.exe", "\\dinput8.dll"})
      std::filesystem::rename(folder.folder + file, place + file);
  }
  void ChoosePad() {
    ASSERT_TRUE(Choose(window, main_window::kDeviceList, 1));
    ASSERT_TRUE(Eventually([&] { return Text(window, main_window::kNumButtons) == "11"; }));
  }
  void MakeProfile(const std::string& name) {
    Name(main_window::kNewProfile, "New Profile", new_profile::kName, name);
  }
  void RenameProfile(const std::string& name) {
    Name(main_window::kRenameProfile, "Rename Profile", profile_name::kName, name);
  }
  // By a button, and the field of the dialog that it opens.
  void Name(std::uint32_t button, const char* title, std::uint32_t field, const std::string& name) {
    Click(window, button);
    const std::uintptr_t question = program->Await(title);
    ASSERT_NE(question, 0u);
    Enter(question, field, name);
    Click(question, IDOK);
    ASSERT_TRUE(program->AwaitGone(title));
  }
  // Past a box that begins so.
  void Read(const std::string& beginning) {
    const std::uintptr_t box = program->AwaitBox(beginning);
    ASSERT_NE(box, 0u) << beginning;
    Post(box, WM_CLOSE);
    ASSERT_TRUE(program->AwaitHidden(box));
  }
  std::int32_t Close() {
    Post(window, WM_CLOSE);
    return program->AwaitEnd();
  }

  TemporaryFolder folder;
  std::string place = folder.folder;  // of the program
  PadHands pad;
  std::unique_ptr<Program> program;
  std::uintptr_t window = 0;
};

TEST_F(WindowsProgram, AFirstStartWelcomesOnce) {
  program = std::make_unique<Program>(folder.folder);
  const std::uintptr_t welcome = program->Await("Welcome to Kelvaro");
  ASSERT_NE(welcome, 0u);
  EXPECT_NE(Text(welcome, welcome::kText).find("Welcome to Kelvaro by Marnstone"),
            std::string::npos);
  Post(welcome, WM_CLOSE);
  window = program->Await("Kelvaro");
  ASSERT_NE(window, 0u);
  EXPECT_EQ(Text(window, main_window::kVersionText), "Version 3.5");
  EXPECT_EQ(Close(), 0);
  program = std::make_unique<Program>(folder.folder);
  window = program->Await("Kelvaro");
  ASSERT_NE(window, 0u) << "without the welcome";
  EXPECT_EQ(Close(), 0);
}

// From the pad through the window to a key in another program.
TEST_F(WindowsProgram, AControlIsMadeByDetectionAndItsKeyReachesAnotherProgram) {
  Start();
  ChoosePad();
  MakeProfile("Jump");
  EXPECT_TRUE(
      Eventually([&] { return std::filesystem::exists(folder.In("Profiles\\Jump.idprof")); }));

  Click(window, main_window::kNewControl);
  const std::uintptr_t dialog = program->Await("Define Control");
  ASSERT_NE(dialog, 0u);
  ASSERT_TRUE(Check(dialog, define_control::kDetectTrigger, true));
  pad.Button(2, true);
  EXPECT_TRUE(Eventually([&] { return Text(dialog, define_control::kTriggerText) == "B3"; }))
      << Text(dialog, define_control::kTriggerText);
  ASSERT_TRUE(Check(dialog, define_control::kDetectTrigger, false));
  Enter(dialog, define_control::kDescriptionText, "J\xC3\xBCmp");
  Enter(dialog, define_control::kKeysText, "j");
  Click(dialog, IDOK);
  ASSERT_TRUE(program->AwaitGone("Define Control"));
  pad.Button(2, false);

  ASSERT_TRUE(AwaitFront(window));
  // Again where a window of the program has taken the first ones.
  Receiver other;
  EXPECT_TRUE(Eventually(
      [&] {
        pad.Button(2, true);
        const bool came = Eventually([&] { return !other.Typed().empty(); }, 1s);
        pad.Button(2, false);
        return came;
      },
      patience));
  EXPECT_EQ(other.Typed().front(), 'j');
  EXPECT_EQ(Close(), 0);
  EXPECT_NE(Content(folder.In("Profiles\\Jump.idprof")).find("J\xC3\xBCmp"), std::string::npos);
}

TEST_F(WindowsProgram, MinimisingHidesItAndItsIconBringsItBack) {
  Start();
  constexpr std::uintptr_t kMinimise = 0xF020;
  constexpr std::uint32_t kSysCommand = 0x112;
  Post(window, kSysCommand, kMinimise);
  EXPECT_TRUE(program->AwaitHidden(window));
  Post(window, WM_TRAY_CALLBACK, 0, WM_LBUTTONDBLCLK);
  EXPECT_EQ(program->Await("Kelvaro"), window);
  Post(window, WM_CLOSE_PROGRAM);
  EXPECT_EQ(program->AwaitEnd(), 0) << "as another instance asks for it";
}

TEST_F(WindowsProgram, ItsPlaceAndItsColumnsAreKept) {
  Start();
  const Place first = PlaceOf(window);
  const Place place{40, 30, 40 + first.right - first.left + 120,
                    30 + first.bottom - first.top + 50};
  const std::int32_t before = ColumnWidth(window, main_window::kControlList, 2);
  MoveTo(window, place);
  EXPECT_EQ(PlaceOf(window), place);
  const std::int32_t width = ColumnWidth(window, main_window::kControlList, 2);
  EXPECT_GT(width, before);
  EXPECT_EQ(Close(), 0);
  Start();
  EXPECT_EQ(PlaceOf(window), place);
  EXPECT_EQ(ColumnWidth(window, main_window::kControlList, 2), width);
  MoveTo(window, {40, 30, 140, 130});
  EXPECT_EQ(PlaceOf(window).right - 40, first.right - first.left) << "its least size";
  EXPECT_EQ(Close(), 0);
}

TEST_F(WindowsProgram, WithoutDirectInputItSaysSoAndEnds) {
  constexpr std::uint32_t kAnyFailure = 0x80004005;
  MarkAsWelcomed();
  pad.Memory().failure = kAnyFailure;
  program = std::make_unique<Program>(folder.folder);
  const std::uintptr_t box = program->Await("Invalid DirectX Object");
  ASSERT_NE(box, 0u);
  constexpr std::uint32_t kTextOfBox = 0xFFFF;
  EXPECT_EQ(Text(box, kTextOfBox).rfind("Error Creating a DirectInput Object.", 0), 0u);
  Post(box, WM_CLOSE);
  EXPECT_EQ(program->AwaitEnd(), 0);
}

TEST_F(WindowsProgram, APadThatIsPulledOutIsGoneUntilItIsBack) {
  Start();
  ChoosePad();
  const auto buttons = [&] { return Text(window, main_window::kNumButtons); };
  MakeProfile("Jump");
  pad.Memory().unplugged = 1;
  Click(window, main_window::kRefreshDeviceList);
  EXPECT_TRUE(Eventually([&] { return buttons() == "0"; })) << buttons();
  EXPECT_EQ(Rows(window, main_window::kDeviceList), 1u);
  pad.Memory().unplugged = 0;
  Click(window, main_window::kRefreshDeviceList);
  EXPECT_TRUE(Eventually([&] { return buttons() == "11"; })) << buttons();
  EXPECT_EQ(Close(), 0);
}

TEST_F(WindowsProgram, APadOnlyForKelvaroIsAskedForAlone) {
  for (const bool alone : {false, true}) {
    if (alone) KeepAlone("Scripted pad");
    Start();
    ChoosePad();
    EXPECT_EQ(pad.Memory().alone, alone ? 1u : 0u);
    EXPECT_EQ(Close(), 0);
  }
}

TEST_F(WindowsProgram, TakesOverTheSettingsOfItsFormerName) {
  MarkAsWelcomedFormerly();
  program = std::make_unique<Program>(folder.folder);
  window = program->Await("Kelvaro");
  ASSERT_NE(window, 0u) << "it has welcomed the person already";
  EXPECT_EQ(Close(), 0);
}

TEST_F(WindowsProgram, ANameThatTheSystemHasForADeviceIsRefused) {
  Start();
  Click(window, main_window::kNewProfile);
  const std::uintptr_t question = program->Await("New Profile");
  ASSERT_NE(question, 0u);
  Enter(question, new_profile::kName, "CON");
  Click(question, IDOK);
  Read("The file name \"CON.idprof\" can't be used");
  MakeProfile("Ends with a dot.");
  EXPECT_EQ(Close(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder.In("Profiles\\Ends with a dot..idprof")));
}

TEST_F(WindowsProgram, SettingsThatMayOnlyBeReadAreReadAndTheirLossIsTold) {
  MarkAsWelcomed();
  const LockedSettings locked;
  program = std::make_unique<Program>(folder.folder);
  Read("Settings can't be stored in HKEY_CURRENT_USER\\Software\\Marnstone\\Kelvaro");
  window = program->Await("Kelvaro");
  ASSERT_NE(window, 0u) << "without the welcome, which the person has read";
  MakeProfile("Jump");
  EXPECT_EQ(Close(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder.In("Profiles\\Jump.idprof")));
  EXPECT_EQ(StoredSettings(), 1u) << "as it was";
}

TEST_F(WindowsProgram, ProfilesThatCanNotBeStoredAreToldOf) {
  std::filesystem::remove(folder.In("Profiles"));
  std::ofstream(folder.In("Profiles")) << "in the place of the folder";
  MarkAsWelcomed();
  program = std::make_unique<Program>(folder.folder);
  Read("Changes to profiles can't be stored in the folder\n" + folder.In("Profiles"));
  window = program->Await("Kelvaro");
  ASSERT_NE(window, 0u);
  MakeProfile("Jump");
  Read("The profile \"Jump\" couldn't be stored in the folder\n" + folder.In("Profiles"));
  Read("Error Creating Profile \"Jump\"");
  EXPECT_EQ(Rows(window, main_window::kProfileList), 0u);
  EXPECT_EQ(Close(), 0);
  EXPECT_EQ(Content(folder.In("Profiles")), "in the place of the folder");
}

TEST_F(WindowsProgram, ProfilesMayHavePathsBeyondTheLimitOfOld) {
  MoveProgram(240);
  constexpr std::size_t kLength = 300;
  const std::string before = place + "\\Profiles\\";
  const std::string ending = ".idprof";
  const std::string name(kLength - before.size() - ending.size(), 'n');
  Start();
  ChoosePad();
  MakeProfile(name);
  EXPECT_EQ(Close(), 0);
  EXPECT_TRUE(std::filesystem::exists(before + name + ending));

  Start();
  ASSERT_EQ(Rows(window, main_window::kProfileList), 1u);
  EXPECT_EQ(RowText(window, main_window::kProfileList, 0), name);
  const std::string other(name.size(), 'o');
  ASSERT_NO_FATAL_FAILURE(RenameProfile(other));
  EXPECT_EQ(Close(), 0);
  EXPECT_TRUE(std::filesystem::exists(before + other + ending));
  EXPECT_FALSE(std::filesystem::exists(before + name + ending));
}

TEST_F(WindowsProgram, WhereItsOwnPathIsTooLongItSaysSoAndEnds) {
  MoveProgram(360);
  std::filesystem::copy_file(KELVAROCTL, place + "\\kelvaroctl.exe");
  MarkAsWelcomed();
  program = Program::AtAnyPath(place + "\\kelvaro.exe");
  Read("This program's path is too long: it has " +
       std::to_string(place.size() + std::string("\\kelvaro.exe").size()) + " bytes");
  EXPECT_EQ(program->AwaitEnd(), 1);
  EXPECT_EQ(Program::AtAnyPath(place + "\\kelvaroctl.exe", "profiles")->AwaitEnd(), 1);
}

TEST_F(WindowsProgram, ItsVersionComesInABox) {
  program = std::make_unique<Program>(folder.folder, "--version");
  const std::uintptr_t box = program->Await("Kelvaro");
  ASSERT_NE(box, 0u);
  constexpr std::uint32_t kTextOfBox = 0xFFFF;
  EXPECT_EQ(Text(box, kTextOfBox), "Kelvaro, Version 3.5");
  Post(box, WM_CLOSE);
  EXPECT_EQ(program->AwaitEnd(), 0);
}

TEST_F(WindowsProgram, TwoRunBesideOneAnother) {
  Start();
  Program second(folder.folder);
  const std::uintptr_t other = second.Await("Kelvaro");
  ASSERT_NE(other, 0u);
  EXPECT_NE(other, window);
  Post(other, WM_CLOSE);
  EXPECT_EQ(second.AwaitEnd(), 0);
  EXPECT_EQ(Close(), 0);
}

TEST_F(WindowsProgram, TheMenuOfItsIconEndsIt) {
  Start();
  Post(window, WM_TRAY_CALLBACK, 0, WM_RBUTTONDOWN);
  ASSERT_TRUE(program->AwaitMenu());
  constexpr std::uint8_t kDown = 0x28;
  constexpr std::uint8_t kReturn = 0x0D;
  PressKey(kDown);
  PressKey(kReturn);
  EXPECT_EQ(program->AwaitEnd(), 0) << "Exit is the first entry";
}

TEST_F(WindowsProgram, StartsMinimisedAndWithTheSessionWhereThePersonWantsIt) {
  Start();
  Click(window, main_window::kStartMinimized);
  Click(window, main_window::kLaunchAtStartup);
  EXPECT_TRUE(
      Eventually([&] { return StartedWithSession("Kelvaro") == folder.In("kelvaro.exe"); }));
  EXPECT_EQ(Close(), 0);
  program = std::make_unique<Program>(folder.folder);
  window = program->AwaitUnseen("Kelvaro");
  ASSERT_NE(window, 0u);
  Post(window, WM_SHOW_FROM_TRAY);
  EXPECT_EQ(program->Await("Kelvaro"), window);
  Click(window, main_window::kLaunchAtStartup);
  EXPECT_TRUE(Eventually([&] { return StartedWithSession("Kelvaro").empty(); }));
  EXPECT_EQ(Close(), 0);
}

TEST_F(WindowsProgram, AGameIsLaunchedWithItsProfileAndEndsIt) {
  Start();
  ChoosePad();
  MakeProfile("Jump");
  EXPECT_EQ(Close(), 0);
  const std::string note = folder.In("played.txt");
  program = std::make_unique<Program>(
      folder.folder,
      "profile=Jump target=C:\\windows\\system32\\cmd.exe args=\"/c echo x>[" + note + "]\"");
  EXPECT_EQ(program->AwaitEnd(), 0);
  EXPECT_TRUE(std::filesystem::exists(note));
}

TEST_F(WindowsProgram, KelvaroctlAsksAndSteersIt) {
  const OwnKelvaroctl ctl;
  Start();
  MakeProfile("One");
  MakeProfile("Two");
  EXPECT_TRUE(ctl.Tells("window: profile 'Two'"));
  EXPECT_EQ(ctl.Do({"select", "One"}).status, 0);
  EXPECT_TRUE(ctl.Tells("window: profile 'One'"));
  EXPECT_EQ(ctl.Do({"pause"}).status, 0);
  EXPECT_TRUE(ctl.Tells("paused"));
  EXPECT_EQ(ctl.Do({"resume"}).status, 0);

  Click(window, main_window::kNewProfile);
  const std::uintptr_t question = program->Await("New Profile");
  ASSERT_NE(question, 0u);
  const OwnKelvaroctl::Said busy = ctl.Do({"select", "Two"});
  EXPECT_EQ(busy.status, 1);
  EXPECT_NE(busy.err.find("the window has a dialog"), std::string::npos) << busy.err;
  Click(question, IDCANCEL);
  ASSERT_TRUE(program->AwaitGone("New Profile"));
  EXPECT_EQ(ctl.Do({"select", "Two"}).status, 0);
  EXPECT_EQ(Close(), 0);
  EXPECT_EQ(ctl.Do({"status"}).status, 1);
}

}  // namespace
}  // namespace kelvaro::tests
