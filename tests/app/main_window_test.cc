// How the window comes to life, hands events on, and ends: the order of each step, and what is left
// of it when one fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "app/platform/simulation/virtual_processes.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "app/window/run_program.h"
#include "tests/app/calls.h"
#include "tests/app/main_window_fixture.h"
#include "tests/storage/chunks.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::IDOK;
using platform::Rect;

class WindowLifeTest : public MainWindowTest {
 public:
  using MainWindowTest::Post;
  using MainWindowTest::screen;

 protected:
  void BeginWithLaunch() {
    platform::simulation::ProcessDescription game;
    game.path = "/games/play";
    sim.Processes().Provide(game);
    screen.SetCommandLine("kelvaro profile=Game target=/games/play");
    Begin();
    ASSERT_EQ(sim.Processes().Started().size(), 1u);
  }
};

std::string PlaceText(const Rect& rect) {
  return std::to_string(rect.left) + "," + std::to_string(rect.top) + " to " +
         std::to_string(rect.right) + "," + std::to_string(rect.bottom);
}

// ---- Before there is a window.

TEST_F(WindowLifeTest, TheObjectTakesItsIconThenThePriorityThenOldSettings) {
  sim.LogCalls(true);
  MainWindow made;
  EXPECT_EQ(CallsOf(sim, {"LoadIconA", "SetPriorityClass", "SetCurrentThreadPriority",
                          "RegOpenKeyA", "RunDialog"}),
            (Strings{"LoadIconA 128", "SetPriorityClass 128", "SetCurrentThreadPriority 15",
                     "RegOpenKeyA HKLM\\Software\\Marnstone\\Kelvaro",
                     "RegOpenKeyA HKLM\\Software\\Marnstone\\Vendrix",
                     "RegOpenKeyA HKCU\\Software\\Marnstone\\Kelvaro"}));
}

TEST_F(WindowLifeTest, PrioritiesThatAreRefusedChangeNothing) {
  sim.FailNext("SetPriorityClass");
  sim.FailNext("SetCurrentThreadPriority");
  Begin();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
}

// ---- Set-up.

TEST_F(WindowLifeTest, TheSetUpGoesStepByStep) {
  const std::string run = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
  const std::string settings = kSettings;
  const std::string place = kMainWindowSettings;
  Preset("Start Minimized", 1);
  Preset("Welcome Display", 0);
  PresetText("Last Device", kPad);
  sim.Registry().PutKey(run);
  sim.Registry().PutKey(place);
  sim.LogCalls(true);
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);
  screen.Close();
  Strings steps = {
      "LoadIconA 128",        // by the constructor
      "RunDialog 102",        // 1
      "SetWindowsHookExA",    // 2
      "SetWindowIcon large",  // 3
      "SetWindowIcon small",
      "HtmlHelp 28",         // 4: HH_INITIALIZE
      "DirectInput8Create",  // 5
      "LoadBitmapA 145",     // 11: pictures,
      "SetPicture 1156",
      "LoadBitmapA 146",
      "SetPicture 1157",
      "LoadBitmapA 148",
      "SetPicture 1173",
      "ComboAddString 1060",  // the devices: none, and one,
      "ComboAddString 1060",
      "ComboSetCurSel 1060 0",
      "RegQueryValueExA " + run + " Kelvaro",
      "RegQueryValueExA " + place + " left",         // the place,
      "RegQueryValueExA " + place + " Col 0 Width",  // the columns
      "LoadIconA 128",                               // 12
      "Shell_NotifyIconA 0",
      "PostMessageA 32778",                             // WM_STEERED
      "RegQueryValueExA " + settings + " Last Device",  // 13
      "CreateDevice",
      "CreateThread notification",
      "ComboSetCurSel 1060 1",
      "RegQueryValueExA " + settings + " Welcome Display",
      "RunDialog 151",  // 14
      "LoadBitmapA 148",
      "SetPicture 1391",
      "ComboAddString 1001",  // 17
      "ComboSetCurSel 1001 0",
      "RegSetValueExA " + settings + " Last Profile",
      "CreateDevice",
      "CreateThread notification",
      "ComboSetCurSel 1060 1",
      "PostMessageA 32774",   // WM_DEVICE_WARNING
      "CreateThread repeat",  // 18
      "SetHandCursor",        // 19
      "SetHandCursor",
      "CreateToolTip",  // 20
      "EnableToolTips",
      "SetTimer 1 5000",     // 21
      "SleepTimer 1",        // no device is looked for
      "PostMessageA 32769",  // 22: WM_HIDE_TO_TRAY
      "PostMessageA 32771",  // 23: WM_STARTUP_IDLE
      "PostMessageA 32776",  // WM_START_LAUNCH
      "ShowWindow 0",
  };
  // A build that has no addresses has no links.
  for (const char* const address : {resources::kWebAddress, resources::kSupportAddress})
    if (!*address) steps.erase(std::find(steps.begin(), steps.end(), "SetHandCursor"));
  EXPECT_EQ(CallsOf(sim, {"RunDialog",
                          "SetWindowsHookExA",
                          "SetWindowIcon",
                          "HtmlHelp",
                          "DirectInput8Create",
                          "LoadBitmapA",
                          "SetPicture",
                          "ComboAddString",
                          "ComboSetCurSel",
                          "RegQueryValueExA " + run,
                          "RegQueryValueExA " + place + " left",
                          "RegQueryValueExA " + place + " Col 0 Width",
                          "LoadIconA",
                          "Shell_NotifyIconA",
                          "RegQueryValueExA " + settings + " Last Device",
                          "CreateDevice",
                          "RegQueryValueExA " + settings + " Welcome Display",
                          "RegSetValueExA " + settings + " Last Profile",
                          "CreateThread",
                          "SetHandCursor",
                          "CreateToolTip",
                          "EnableToolTips",
                          "SetTimer",
                          "SleepTimer",
                          "PostMessageA",
                          "ShowWindow"}),
            steps);
}

TEST_F(WindowLifeTest, AfterTheSetUpTheWindowIsReady) {
  Begin();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(screen.Title(), "Kelvaro");
  EXPECT_TRUE(screen.Shown());
  EXPECT_EQ(screen.Icon(true), 128u);
  EXPECT_EQ(screen.Icon(false), 128u);
  EXPECT_TRUE(Window()->InitComplete());
  EXPECT_EQ(screen.Tabs(kTabControl), (Strings{"Control", "Mouse", "Device", "Settings"}));
  EXPECT_EQ(screen.Tab(kTabControl), 0);
  EXPECT_EQ(CurrentTab(), 0u);
  EXPECT_EQ(Window()->deviceTab.pollInterval, 5u);
  EXPECT_EQ(Device()->PollInterval(), 5u);
  EXPECT_EQ(screen.Rows(kProfileList), Strings{kProfile});
  EXPECT_EQ(screen.Chosen(kProfileList), kProfile);
  EXPECT_EQ(screen.Chosen(kDeviceList), kPad);
  EXPECT_EQ(CurrentDeviceName(), kPad);
  EXPECT_EQ(screen.Text(kVersionText), "Version 3.5");
  EXPECT_EQ(screen.Picture(kMoveUp), 145u);
  EXPECT_EQ(screen.Picture(kMoveDown), 146u);
  EXPECT_EQ(screen.Picture(kBanner), 148u);
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(WindowLifeTest, TheLimitsOfTheTimerAreShown) {
  sim.SetTimerLimits(1234, 777777);
  WithoutProfiles();
  Begin();
  screen.ChooseTab(kTabControl, 2);
  EXPECT_EQ(screen.Text(kTimerMin), "1234");
  EXPECT_EQ(screen.Text(kTimerMax), "777777");
}

TEST_F(WindowLifeTest, AnIntervalThatTheTimerRefusesLeavesTheManagersOwn) {
  sim.SetTimerLimits(10, 1000);
  WithoutProfiles();
  Begin();
  EXPECT_EQ(Window()->deviceTab.pollInterval, 5u);
  EXPECT_EQ(Device()->PollInterval(), 33u);
}

TEST_F(WindowLifeTest, TheProfilesStandInTheOrderOfTheirNamesAndTheLastOneIsChosen) {
  for (const char* name : {"zeta", "Alpha", "beta"})
    StoreProfile(name, [this](ProfileFile& made) { UsePad(made); });
  PresetText("Last Profile", "BETA");
  Begin();
  EXPECT_EQ(screen.Rows(kProfileList), (Strings{"Alpha", "beta", kProfile, "zeta"}));
  EXPECT_EQ(screen.Chosen(kProfileList), "beta");
  EXPECT_EQ(Bytes(Settings().lastProfile), "beta");
}

TEST_F(WindowLifeTest, ALastProfileThatIsGoneGivesTheFirst) {
  StoreProfile("Alpha", [this](ProfileFile& made) { UsePad(made); });
  PresetText("Last Profile", "Alph");
  Begin();
  EXPECT_EQ(screen.Chosen(kProfileList), "Alpha");
}

TEST_F(WindowLifeTest, WithoutAnyProfileNothingIsChosen) {
  WithoutProfiles();
  PresetText("Last Profile", "Old");
  Begin();
  EXPECT_EQ(screen.Front(), main_window::kDialog);
  EXPECT_EQ(screen.Rows(kProfileList), Strings{});
  EXPECT_EQ(screen.ChosenRow(kProfileList), platform::kNoRow);
  EXPECT_EQ(Bytes(Settings().lastProfile), "Old");
  EXPECT_TRUE(screen.Boxes().empty());
  screen.Close();
  EXPECT_EQ(SettingText("Last Profile"), "Old");
}

TEST_F(WindowLifeTest, TheRepeatThreadHasThePriorityOfTheWindow) {
  sim.LogCalls(true);
  Begin();
  const Strings calls = CallsOf(sim, {"CreateThread", "SetCurrentThreadPriority"});
  EXPECT_NE(std::find(calls.begin(), calls.end(), "CreateThread repeat"), calls.end());
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "SetCurrentThreadPriority 15"),
            static_cast<std::ptrdiff_t>(CountCalls(sim, "SetCurrentThreadPriority")));
  EXPECT_EQ(CountCalls(sim, "SetCurrentThreadPriority"), 3u) << "window, notification, repeat";
}

TEST_F(WindowLifeTest, TheThreadOfALaunchHasThePriorityOfTheWindow) {
  sim.LogCalls(true);
  BeginWithLaunch();
  const Strings calls = CallsOf(sim, {"CreateThread", "SetCurrentThreadPriority"});
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "CreateThread launcher"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "SetCurrentThreadPriority 15"),
            static_cast<std::ptrdiff_t>(CountCalls(sim, "SetCurrentThreadPriority")));
  EXPECT_EQ(CountCalls(sim, "SetCurrentThreadPriority"), 4u)
      << "window, notification, repeat, launch";
}

// ---- Set-up that fails.

// What a start that failed half way does to the settings: those that it hadn't read yet are
// written over.
class FailedStartTest : public WindowLifeTest {
 protected:
  FailedStartTest() {
    Preset("Show Auto-Detect Usage", 0);
    Preset("Start Minimized", 1);
    Preset("Smart Check", 0);
    Preset("Shift Reminder", 0);
    PresetText("Last Profile", kProfile);
    Preset("No Device Error Msg", 1);
    Preset("Autodetect Device Plugin", 1);
    Preset("Welcome Display", 1);
    sim.LogCalls(true);
  }
  void ExpectTheStartValuesWritten() {
    EXPECT_EQ(Number("Show Auto-Detect Usage"), 1u);
    EXPECT_EQ(Number("Start Minimized"), 0u);
    EXPECT_EQ(Number("Smart Check"), 1u);
    EXPECT_EQ(Number("Shift Reminder"), 1u);
    EXPECT_EQ(SettingText("Last Profile"), "");
    EXPECT_EQ(Number("No Device Error Msg"), 0u);
    EXPECT_EQ(Number("Autodetect Device Plugin"), 0u);
    EXPECT_EQ(Number("Welcome Display"), 0u);
  }
  void ExpectNothingWasSetUpBehindIt() {
    EXPECT_EQ(CountCalls(sim, "CreateThread"), 0u);
    EXPECT_EQ(CountCalls(sim, "SetTimer"), 0u);
    EXPECT_EQ(CountCalls(sim, "PostMessageA"), 0u);
    EXPECT_EQ(CountCalls(sim, "CreateToolTip"), 0u);
    EXPECT_EQ(CountCalls(sim, "ShowWindow"), 0u);
  }
};

TEST_F(FailedStartTest, WithoutDirectInputTheReasonIsToldAndTheProgramEnds) {
  sim.FailNext("DirectInput8Create", platform::DIERR_OUTOFMEMORY);
  Begin();
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().caption, "Invalid DirectX Object");
  EXPECT_EQ(screen.Box().type, platform::MB_ICONSTOP);
  EXPECT_EQ(screen.Box().text,
            "Error Creating a DirectInput Object.\nUnable to Continue.\n\nPlease ensure that you "
            "have DirectX v8.0a or later installed on your system,\nand that at least one game "
            "device is installed (it does not need to be connected).\n\nDirectX "
            "Error:\nDirectInput8Create() failed with return code: -2147024882 (0x8007000e) "
            "[DIERR_OUTOFMEMORY]");
  EXPECT_FALSE(platform::desktop().IsWindowVisible(Handle()));
  screen.Answer(IDOK);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Boxes().size(), 1u);
  EXPECT_EQ(CountCalls(sim, "LoadBitmapA"), 0u) << "the controls weren't prepared";
  EXPECT_EQ(CountCalls(sim, "Shell_NotifyIconA"), 0u);
  EXPECT_EQ(CountCalls(sim, "UnhookWindowsHookEx"), 1u);
  EXPECT_EQ(CountCalls(sim, "HtmlHelp"), 3u);
  ExpectNothingWasSetUpBehindIt();
  ExpectTheStartValuesWritten();
  EXPECT_FALSE(sim.Registry().HasKey(kMainWindowSettings)) << "no place was ever restored";
}

TEST_F(FailedStartTest, AnIconThatIsNotAddedEndsTheProgramInSilence) {
  sim.FailNext("Shell_NotifyIconA");
  Begin();
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(CallsOf(sim, {"Shell_NotifyIconA", "DestroyIcon"}),
            (Strings{"Shell_NotifyIconA 0", "DestroyIcon"}));
  ExpectNothingWasSetUpBehindIt();
  ExpectTheStartValuesWritten();
}

TEST_F(FailedStartTest, AnIconThatIsNotLoadedEndsTheProgramInSilence) {
  sim.FailAlways("LoadIconA");
  Begin();
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(CountCalls(sim, "Shell_NotifyIconA"), 0u);
  EXPECT_EQ(CountCalls(sim, "DestroyIcon"), 0u);
  ExpectNothingWasSetUpBehindIt();
  ExpectTheStartValuesWritten();
}

TEST_F(FailedStartTest, WithoutAWindowTheObjectWritesThemAllTheSame) {
  sim.FailNext("RunDialog");
  Begin();
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), -1);
  ExpectTheStartValuesWritten();
}

TEST_F(WindowLifeTest, WithoutAWindowThereIsNothingToEnd) {
  Begin();
  CloseAll();
  sim.LogCalls(true);
  sim.FailNext("RunDialog");
  Begin();
  EXPECT_EQ(CallsOf(sim, {"KillTimer", "UnhookWindowsHookEx", "Shell_NotifyIconA", "DestroyIcon",
                          "HtmlHelp"}),
            Strings{})
      << "nor anything of the window before";
}

TEST_F(FailedStartTest, TheProgramsStatusTellsWhetherItsWindowWasThere) {
  sim.FailNext("RunDialog");
  screen.Start(&RunProgram);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), 1);
  sim.FailAlways("LoadIconA");  // which ends the window at once
  screen.Start(&RunProgram);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(screen.Result(), 0);
}

TEST_F(WindowLifeTest, WithoutTheHookAMinimisedWindowStaysMinimised) {
  sim.FailNext("SetWindowsHookExA");
  sim.LogCalls(true);
  Begin();
  screen.Minimise();
  EXPECT_TRUE(screen.Shown());
  EXPECT_TRUE(screen.Minimised());
  CloseAll();
  EXPECT_EQ(CountCalls(sim, "UnhookWindowsHookEx"), 0u);
}

TEST_F(WindowLifeTest, ARepeatThreadThatCannotBeMadeIsMissedInSilence) {
  WithoutPad();
  WithoutProfiles();
  sim.FailNext("CreateThread");
  Begin();
  EXPECT_TRUE(Window()->InitComplete());
  EXPECT_TRUE(screen.Boxes().empty());
}

// ---- The end of the program while the set-up waits for the person.

TEST_F(WindowLifeTest, AnEndDuringTheWelcomeIsTheEndOfTheSetUp) {
  FirstStart();
  sim.LogCalls(true);
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog);
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(CountCalls(sim, "SetTimer"), 0u);
  EXPECT_EQ(CountCalls(sim, "ComboAddString 1001"), 0u) << "the list of profiles";
  EXPECT_EQ(Number("Welcome Display"), 1u);
}

TEST_F(WindowLifeTest, AnEndDuringABoxOfTheCommandLineIsTheEndOfTheSetUp) {
  screen.SetCommandLine("kelvaro Nobody");
  sim.LogCalls(true);
  Begin();
  ASSERT_TRUE(screen.BoxUp());
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(CountCalls(sim, "SetTimer"), 0u);
  EXPECT_EQ(CountCalls(sim, "CreateThread"), 0u);
}

TEST_F(WindowLifeTest, AnEndDuringABoxOfTheFirstProfileIsTheEndOfTheSetUp) {
  PutProfileFile("Game.idprof",
                 ProfileBytes({List(1, {Field("EventProfile")}), List(2, {Field("\x01")}),
                               List(3, {Field(kProfile), Field(Big(2, 4))}),
                               List(4, {List(5, {Field("cut short")})})}));
  sim.LogCalls(true);
  Begin();
  ASSERT_TRUE(screen.BoxUp());
  EXPECT_EQ(screen.Box().caption, "File Read Error");
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(CountCalls(sim, "SetTimer"), 0u);
}

// ---- The end.

TEST_F(WindowLifeTest, TheCloseBoxPressedByAnotherProgramEndsIt) {
  Begin();
  Post(platform::WM_CLOSE);
  EXPECT_FALSE(screen.Running());
}

TEST_F(WindowLifeTest, TheCleanupGoesStepByStep) {
  const std::string settings = kSettings;
  Begin();
  sim.RunFor(100);  // the first state of the pad has been handed on
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(
      CallsOf(sim, {"KillTimer", "UnhookWindowsHookEx", "SetEvent",
                    "RegSetValueExA " + settings + " Last Device",
                    "RegSetValueExA " + settings + " Welcome Display", "timeKillEvent", "Unacquire",
                    "Release", "Shell_NotifyIconA", "DestroyIcon", "HtmlHelp", "EndDialog",
                    std::string("RegSetValueExA ") + kMainWindowSettings + " left"}),
      (Strings{
          "KillTimer 1",
          "UnhookWindowsHookEx",
          "SetEvent 6",  // stops the repeat thread
          "RegSetValueExA " + settings + " Last Device",
          "RegSetValueExA " + settings + " Welcome Display",
          "timeKillEvent 1",
          "SetEvent 4",  // and the notification thread, with the manager
          "Unacquire",
          "Release",
          "Release DirectInput",
          "Shell_NotifyIconA 2",
          "DestroyIcon",
          "HtmlHelp 18",  // HH_CLOSE_ALL
          "HtmlHelp 29",  // HH_UNINITIALIZE
          "EndDialog 2",
          std::string("RegSetValueExA ") + kMainWindowSettings + " left",
      }));
}

TEST_F(WindowLifeTest, ALaunchIsStoppedBehindTheRepeatThreadAndBeforeTheSettingsAreStored) {
  const std::string lastDevice = std::string("RegSetValueExA ") + kSettings + " Last Device";
  BeginWithLaunch();
  sim.RunFor(100);
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(CallsOf(sim, {"UnhookWindowsHookEx", "SetEvent", lastDevice, "timeKillEvent"}),
            (Strings{
                "UnhookWindowsHookEx",
                "SetEvent 6",  // stops the repeat thread
                "SetEvent 1",  // and then the launch
                lastDevice, "timeKillEvent 1",
                "SetEvent 4",  // and the notification thread, with the manager
            }));
}

TEST_F(WindowLifeTest, EachWayOutCleansUpOnce) {
  const struct {
    const char* name;
    std::function<void(WindowLifeTest&)> leave;
  } kWays[] = {
      {"close box", [](WindowLifeTest& test) { test.screen.Close(); }},
      {"Esc", [](WindowLifeTest& test) { test.screen.Press(test.screen.kEsc); }},
      {"menu",
       [](WindowLifeTest& test) {
         test.screen.IconRightClick();
         test.screen.ChooseMenu("Exit");
       }},
      {"menu while hidden",
       [](WindowLifeTest& test) {
         test.screen.Minimise();
         test.screen.IconRightClick();
         test.screen.ChooseMenu("Exit");
       }},
      {"message", [](WindowLifeTest& test) { test.Post(0x8007); }},
      {"message while hidden",
       [](WindowLifeTest& test) {
         test.screen.Minimise();
         test.Post(0x8007);
       }},
      {"message during a dialog",
       [](WindowLifeTest& test) {
         test.screen.ChooseTab(kTabControl, 3);
         test.screen.Click(kAdvanced);
         test.Post(0x8007);
       }},
  };
  for (const auto& way : kWays) {
    Begin();
    sim.LogCalls(true);
    sim.ClearCalls();
    way.leave(*this);
    EXPECT_FALSE(screen.Running()) << way.name;
    EXPECT_EQ(screen.Result(), platform::IDCANCEL) << way.name;
    EXPECT_EQ(CountCalls(sim, "KillTimer"), 1u) << way.name;
    EXPECT_EQ(CountCalls(sim, "UnhookWindowsHookEx"), 1u) << way.name;
    EXPECT_EQ(CountCalls(sim, "Shell_NotifyIconA"), 1u) << way.name;
    EXPECT_EQ(CountCalls(sim, "DestroyIcon"), 1u) << way.name;
    EXPECT_EQ(CountCalls(sim, "HtmlHelp"), 2u) << way.name;
    EXPECT_EQ(CountCalls(sim, "RegSetValueExA HKCU\\Software\\Marnstone\\Kelvaro Smart Check"), 1u)
        << way.name;
    ExpectNothingLeft();
  }
}

TEST_F(WindowLifeTest, TheOpenProfileIsNotSavedAtTheEnd) {
  Begin();
  OpenProfile().movementSensitivity = 44;
  sim.Disk().ClearLog();
  screen.Close();
  EXPECT_EQ(sim.Disk().Count("WriteFile"), 0u);
  EXPECT_NE(Stored(kProfile)->movementSensitivity, 44);
}

TEST_F(WindowLifeTest, ThePlaceAndThenTheColumnsAreStoredWhenTheWindowGoes) {
  Begin();
  screen.MoveTo(30, 40);
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(CallsOf(sim, {"EndDialog", std::string("RegSetValueExA ") + kMainWindowSettings}),
            (Strings{"EndDialog 2", std::string("RegSetValueExA ") + kMainWindowSettings + " left",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " top",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " right",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " bottom",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 0 Width",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 1 Width",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 2 Width",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 0 Order",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 1 Order",
                     std::string("RegSetValueExA ") + kMainWindowSettings + " Col 2 Order"}));
  EXPECT_EQ(sim.Registry().Number(kMainWindowSettings, "left"), 30u);
  EXPECT_EQ(sim.Registry().Number(kMainWindowSettings, "top"), 40u);
}

// ---- Messages.

TEST_F(WindowLifeTest, MessagesOfTheStartAndUnknownOnesDoNothing) {
  Begin();
  sim.LogCalls(true);
  for (const std::uint32_t message : {0x0u, 0x8003u, 0x8004u, 0x8005u, 0x8008u, 0x800Au}) {
    Post(message);
    EXPECT_TRUE(screen.Running()) << message;
  }
  EXPECT_EQ(CountCalls(sim, "PostMessageA"), sim.Calls().size()) << "nothing but the test's own";
}

TEST_F(WindowLifeTest, NothingCountsAfterTheCleanup) {
  Begin();
  sim.LogCalls(true);
  for (const std::uint32_t message : {WM_CLOSE_PROGRAM, WM_SHOW_FROM_TRAY, WM_DEVICE_WARNING})
    platform::desktop().PostMessageA(Handle(), message, 0, 0);
  Post(WM_SHOW_WELCOME);
  EXPECT_FALSE(screen.Running());
  EXPECT_EQ(CountCalls(sim, "ShowWindow"), 0u);
  EXPECT_EQ(CountCalls(sim, "RunDialog"), 0u);
}

// ---- The hook.

TEST_F(WindowLifeTest, TheHookHidesWhatIsMinimisedAndNothingElse) {
  Begin();
  const struct {
    std::int32_t code;
    std::intptr_t lParam;
    std::size_t posts;
  } kRows[] = {{1, 6, 1}, {1, 2, 0}, {1, 7, 0}, {1, 3, 0}, {1, 0x10006, 0}, {0, 6, 0}, {5, 6, 0}};
  for (const auto& row : kRows) {
    sim.LogCalls(true);
    sim.ClearCalls();
    EXPECT_EQ(NotificationArea::MinimiseHook(row.code, Handle(), row.lParam), 0);
    EXPECT_EQ(CountCalls(sim, "PostMessageA 32769"), row.posts) << row.code << " " << row.lParam;
  }
  screen.Settle();
  EXPECT_FALSE(screen.Shown());
}

TEST_F(WindowLifeTest, TheHookAlwaysCallsTheNextOneAndDropsItsResult) {
  static std::int32_t calls;
  calls = 0;
  const platform::HookHandle older = platform::desktop().SetWindowsHookExA(
      platform::WH_CBT, [](std::int32_t, std::uintptr_t, std::intptr_t) -> std::intptr_t {
        ++calls;
        return 1;  // would keep the window from being minimised
      });
  Begin();
  screen.Minimise();
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(screen.Shown());
  EXPECT_EQ(NotificationArea::MinimiseHook(0, Handle(), 0), 0);
  EXPECT_EQ(calls, 2);
  Post(WM_CLOSE_PROGRAM);
  platform::desktop().UnhookWindowsHookEx(older);
}

// ---- The timer.

class PluginTest : public WindowLifeTest {
 protected:
  PluginTest() {
    WithoutPad();
    Preset("No Device Error Msg", 1);
    Preset("Autodetect Device Plugin", 1);
  }
};

TEST_F(PluginTest, ItIsLookedForEachFiveSecondsUntilItIsThere) {
  Begin();
  sim.LogCalls(true);
  sim.RunFor(26000);
  EXPECT_EQ(CountCalls(sim, "EnumDevices"), 5u);
  pad.PlugIn();
  sim.RunFor(5500);
  EXPECT_EQ(CountCalls(sim, "EnumDevices"), 6u);
  sim.RunFor(30000);
  EXPECT_EQ(CountCalls(sim, "EnumDevices"), 6u) << "nothing more while it is in use";
}

TEST_F(PluginTest, WithoutTheSettingNothingIsLookedFor) {
  Begin();
  Settings().autodetectDevicePlugin = false;
  pad.PlugIn();
  sim.RunFor(30000);
  EXPECT_FALSE(Device()->DeviceSelected());
}

// Wake-ups of the window in a minute, once Qt has given back what it kept of drawing.
class RestTest : public PluginTest {
 protected:
  std::uint64_t Wakes() {
    sim.RunFor(60000);
    const std::uint64_t before = screen.Wakes();
    sim.RunFor(60000);
    return screen.Wakes() - before;
  }
};

TEST_F(RestTest, WhatLooksForADeviceSleepsWhileThereIsNoneToFind) {
  Begin();
  EXPECT_EQ(Wakes(), 12u) << "each look";
  pad.PlugIn();
  EXPECT_EQ(Wakes(), 0u) << "it is in use";
  ASSERT_TRUE(Device()->DeviceSelected());
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Choose(kDeviceList, "-- None --");
  EXPECT_EQ(Wakes(), 0u) << "none is wanted";
}

TEST_F(RestTest, WithTheBoxOffNothingWakesTheWindow) {
  Preset("Autodetect Device Plugin", 0);
  Begin();
  EXPECT_EQ(Wakes(), 0u);
}

TEST_F(RestTest, NoCaretBlinksInAWindowThatIsHidden) {
  Preset("Autodetect Device Plugin", 0);
  pad.PlugIn();
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.FocusOn(kInterval);
  EXPECT_GT(Wakes(), 0u) << "it blinks";
  Post(WM_HIDE_TO_TRAY);
  EXPECT_FALSE(screen.Shown());
  EXPECT_EQ(Wakes(), 0u);
}

class LookTest : public PluginTest {
 protected:
  LookTest() {
    PresetText("Last Profile", kProfile);
    StoreProfile("Another", [](ProfileFile& made) { made.deviceName = "Not there"; });
    sim.LogCalls(true);
  }

  // The time of the next one.
  std::uint64_t NextLook() {
    sim.ClearCalls();
    for (int ms = 0; ms < 20000 && CountCalls(sim, "EnumDevices") == 0; ++ms) sim.RunFor(1);
    return sim.Now();
  }
};

TEST_F(LookTest, TheNextOneComesAtItsTimeAfterADeviceIsLetGo) {
  Begin();
  const std::uint64_t first = NextLook();
  pad.PlugIn();
  EXPECT_EQ(NextLook(), first + 5000);
  sim.RunFor(500);
  ASSERT_TRUE(Device()->DeviceSelected());
  sim.RunUntil(first + 12345);
  screen.Choose(kProfileList, "Another");
  ASSERT_FALSE(Device()->DeviceSelected());
  ASSERT_LT(sim.Now(), first + 15000);
  EXPECT_EQ(NextLook(), first + 15000);
  EXPECT_EQ(NextLook(), first + 20000);
}

TEST_F(LookTest, TheNextOneComesAtItsTimeAfterTheBoxIsChecked) {
  Begin();
  const std::uint64_t first = NextLook();
  const auto clickTheBox = [this] {
    screen.ChooseTab(kTabControl, MainWindow::kSettingsTab);
    screen.Click(kAdvanced);
    screen.Click(advanced_settings::kAutodetectDevicePlugin);
    screen.Click(platform::IDOK);
  };
  clickTheBox();
  sim.ClearCalls();
  sim.RunUntil(first + 22222);
  clickTheBox();
  EXPECT_EQ(CountCalls(sim, "EnumDevices"), 0u);
  EXPECT_EQ(NextLook(), first + 25000);
}

TEST_F(PluginTest, AnyTimerCounts) {
  Begin();
  pad.PlugIn();
  platform::desktop().SetTimer(Handle(), 77, 10);
  Post(platform::WM_NULL);  // the window looks at its timers again
  sim.RunFor(1000);
  EXPECT_TRUE(Device()->DeviceSelected());
}

TEST_F(PluginTest, WithoutATimerNothingIsLookedFor) {
  sim.FailNext("SetTimer");
  Begin();
  pad.PlugIn();
  sim.RunFor(30000);
  EXPECT_FALSE(Device()->DeviceSelected());
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(CountCalls(sim, "KillTimer"), 0u);
}

// ---- Tabs.

TEST_F(WindowLifeTest, EachTabShowsItsPageAndTheRowOfProfiles) {
  const std::vector<std::vector<std::uint32_t>> pages = {
      {kControlList, kNewControl, kEditControl, kDeleteControls, kCopyControls, kPasteControls,
       kMoveUp, kMoveDown},
      {kMouseX, kDetectMouseX, kTestMode, kMouseAlwaysActive, kMovementSensitivityFrame,
       kMovementSensitivity, kMovementDamperFrame, kMovementDamper, kWheelSensitivityFrame,
       kWheelSensitivity, kWheelDamperFrame, kWheelDamper},
      {kDeviceList, kRefreshDeviceList, kNumButtons, kNumAxis, kNumPovs, kTimerMin, kTimerMax,
       kInterval, kRate, kDefaultRate},
      {kStartMinimized, kLaunchAtStartup, kBanner, kWebLink, kMailLink, kVersionText, kCopyright,
       kSmartCheck, kLicense, kAdvanced}};
  Begin();
  for (std::int32_t tab : {1, 2, 3, 0}) {
    screen.ChooseTab(kTabControl, tab);
    EXPECT_EQ(CurrentTab(), tab);
    for (std::int32_t page = 0; page < 4; ++page) {
      for (const std::uint32_t id : pages[static_cast<std::size_t>(page)])
        EXPECT_EQ(screen.Visible(id), page == tab) << id << " on tab " << tab;
    }
    for (const std::uint32_t id : {1000u, kProfileList, kProfileLabel, kNewProfile, kDeleteProfile,
                                   kRenameProfile, kCopyProfile, kHelp})
      EXPECT_TRUE(screen.Visible(id)) << id;
  }
}

TEST_F(WindowLifeTest, TheBoxOfAPageIsNeverShown) {
  sim.LogCalls(true);
  Begin();
  for (const std::int32_t tab : {1, 2, 3, 0}) screen.ChooseTab(kTabControl, tab);
  for (const std::uint32_t id :
       {kControlPageBox, kMousePageBox, kDevicePageBox, kSettingsPageBox}) {
    const std::string call = "ShowControl " + std::to_string(id);
    EXPECT_GT(CountCalls(sim, call), 0u) << id;
    EXPECT_EQ(CountCalls(sim, call), CountCalls(sim, call + " 0")) << id;
  }
}

TEST_F(WindowLifeTest, AChangeOfTabWithoutADetectionSavesNothing) {
  Begin();
  screen.ChooseTab(kTabControl, 1);
  sim.Disk().ClearLog();
  sim.LogCalls(true);
  screen.ChooseTab(kTabControl, 0);
  EXPECT_EQ(sim.Disk().Count("WriteFile"), 0u);
  EXPECT_EQ(CountCalls(sim, "RegSetValueExA"), 0u);
}

// ---- Keys that reach the window itself.

// ---- Layout.

using MainLayoutTest = WindowLifeTest;

// The inside is 570 by 377, a tab 20 high. Sized controls lose a pixel across and down; the page's
// box is 10 inside of the tab control and 30 below its upper edge, and its controls go with it by 1
// to the right and 3 up.
TEST_F(MainLayoutTest, ControlsStandWhereTheTreesPutThemAtThreeSizes) {
  Begin();
  ASSERT_EQ(PlaceText(screen.Place()), "115,211 to 685,588");
  // The place as made, and which edges go with the window's: left, right, bottom.
  const struct {
    std::uint32_t id;
    Rect made;
    std::int32_t left, right, bottom;
  } kPlaces[] = {{kProfileLabel, {9, 16, 54, 31}, 0, 0, 0},
                 {kProfileList, {57, 11, 199, 33}, 0, 1, 0},
                 {kNewProfile, {209, 11, 275, 34}, 1, 1, 0},
                 {kHelp, {497, 11, 563, 34}, 1, 1, 0},
                 {kTabControl, {0, 42, 563, 370}, 0, 1, 1},
                 {kNewControl, {10, 72, 76, 95}, 0, 0, 0},
                 {kControlList, {10, 101, 553, 360}, 0, 1, 1},
                 {kUnnamed, {10, 72, 295, 186}, 0, 0, 0},
                 {kDeviceList, {61, 72, 398, 94}, 0, 1, 0},
                 {kRefreshDeviceList, {408, 72, 552, 95}, 1, 1, 0}};
  const auto expectPlaces = [&](std::int32_t across, std::int32_t down) {
    for (const auto& [id, made, left, right, bottom] : kPlaces) {
      const Rect place{made.left + left * across, made.top, made.right + right * across,
                       made.bottom + bottom * down};
      EXPECT_EQ(PlaceText(screen.ControlPlace(id)), PlaceText(place)) << id << " " << across;
    }
  };
  expectPlaces(0, 0);
  screen.Resize(670, 457);
  expectPlaces(100, 80);
  screen.Resize(610, 377);
  expectPlaces(40, 0);
  EXPECT_EQ(PlaceText(Window()->ClientRect()), "0,0 to 610,377");
}

TEST_F(MainLayoutTest, WithoutTheTabsRectangleAPageIs32BelowTheTabControl) {
  sim.FailNext("TabGetItemRect");
  Begin();
  EXPECT_EQ(PlaceText(screen.ControlPlace(kNewControl)), "10,74 to 76,97");
}

// The list is 543 wide with 16 of them for its frame and scroll bar. Columns grow by their share,
// cut to whole pixels, and the last gets the rest.
TEST_F(MainLayoutTest, TheColumnsShareTheWidth) {
  Begin();
  EXPECT_EQ(screen.ColumnWidths(kControlList), (std::vector<std::int32_t>{100, 50, 377}));
  screen.Resize(670, 377);
  EXPECT_EQ(screen.ColumnWidths(kControlList), (std::vector<std::int32_t>{118, 59, 450}));
  screen.Resize(610, 377);
  EXPECT_EQ(screen.ColumnWidths(kControlList), (std::vector<std::int32_t>{107, 53, 407}));
}

TEST_F(MainLayoutTest, TheLastColumnGivesWhatADraggedOneTakes) {
  Begin();
  screen.DragDivider(kControlList, 0, 200);
  EXPECT_EQ(screen.ColumnWidths(kControlList), (std::vector<std::int32_t>{200, 50, 277}));
}

// A column that reached beyond the list for a moment would show a scroll bar.
TEST_F(MainLayoutTest, TheListGrowsBeforeItsColumnsAndShrinksAfterThem) {
  Begin();
  sim.LogCalls(true);
  screen.Resize(670, 377);
  const Strings growing = CallsOf(sim, {"EndDeferWindowPos", "ListSetColumnWidth"});
  sim.ClearCalls();
  screen.Resize(610, 377);
  const Strings shrinking = CallsOf(sim, {"EndDeferWindowPos", "ListSetColumnWidth"});
  ASSERT_EQ(growing.size(), 7u) << "four pages and three columns";
  EXPECT_TRUE(growing.front().starts_with("EndDefer"));
  EXPECT_TRUE(growing.back().starts_with("ListSet"));
  ASSERT_EQ(shrinking.size(), 7u);
  EXPECT_TRUE(shrinking.front().starts_with("ListSet"));
  EXPECT_TRUE(shrinking.back().starts_with("EndDefer"));
}

TEST_F(MainLayoutTest, TheStoredPlaceIsTakenBeforeTheWindowIsSeen) {
  const struct {
    const char* name;
    std::uint32_t edge;
  } kEdges[] = {{"left", 50}, {"top", 60}, {"right", 750}, {"bottom", 560}};
  for (const auto& edge : kEdges)
    sim.Registry().PutDword(kMainWindowSettings, edge.name, edge.edge);
  Begin();
  EXPECT_EQ(PlaceText(screen.Place()), "50,60 to 750,560");
  // 130 wider and 123 higher than as made.
  EXPECT_EQ(PlaceText(screen.ControlPlace(kTabControl)), "0,42 to 693,493");
  EXPECT_EQ(PlaceText(screen.ControlPlace(kControlList)), "10,101 to 683,483");
}

TEST_F(MainLayoutTest, TheGripIsDrawnInTheCornerAndTakesTheMouse) {
  Begin();
  EXPECT_EQ(screen.Paint(), Strings{"grip 556,363,570,377"});
  EXPECT_EQ(screen.HitTest(566, 373), platform::HTBOTTOMRIGHT);
}

// ---- Keys of the window

TEST_F(MainWindowTest, ControlWithTabOrAPageKeyGoesFromTabToTab) {
  Begin();
  const struct {
    std::uint8_t key;
    std::int32_t tab;
  } steps[] = {{0x09, 1}, {0x22, 2}, {0x22, 3}, {0x09, 0}, {0x21, 3}, {0x21, 2}};
  for (const auto& step : steps) {
    screen.Press(step.key, true);
    EXPECT_EQ(screen.Tab(kTabControl), step.tab);
    EXPECT_EQ(screen.Visible(kControlList), step.tab == 0);
    EXPECT_EQ(screen.Visible(kDeviceList), step.tab == 2);
  }
}

TEST_F(MainWindowTest, F1TellsOfWhatHasTheFocus) {
  Begin();
  const auto topic = [&](std::uint32_t id) {
    screen.FocusOn(id);
    screen.Press(screen.kF1);
    return screen.HelpCalls().back().topic;
  };
  EXPECT_EQ(topic(kControlList), "Creating and Editing Controls.htm");
  EXPECT_EQ(topic(kPasteControls), "Creating and Editing Controls.htm");
  EXPECT_EQ(topic(kProfileList), "Creation Maintenance and Location.htm");
  screen.ChooseTab(kTabControl, 1);
  EXPECT_EQ(topic(kMovementDamper), "Mouse Device and Settings.htm#mouse");
  EXPECT_EQ(topic(kDeleteProfile), "Creation Maintenance and Location.htm");
  screen.ChooseTab(kTabControl, 2);
  EXPECT_EQ(topic(kInterval), "Mouse Device and Settings.htm#device");
  screen.ChooseTab(kTabControl, 3);
  EXPECT_EQ(topic(kSmartCheck), "Mouse Device and Settings.htm#settings");
}

// As some lists tell of each key, beside the window.
TEST_F(MainWindowTest, F1ThatAListTellsOfIsNotThatOfTheWindow) {
  Begin();
  const std::size_t before = screen.HelpCalls().size();
  static_cast<platform::WindowListener&>(*Window()).OnNotice(kControlList,
                                                             platform::Notice::KeyDown, 0x70);
  EXPECT_EQ(screen.HelpCalls().size(), before);
}

// ---- The same acts give the same run, with Qt's own timers, paintings and loops in it.

class OneRound : public MainWindowTest {
 public:
  std::string Played() {
    sim.LogCalls(true);
    Begin();
    std::string times;
    for (std::int32_t tab = 3; tab >= 0; --tab) {
      screen.ChooseTab(kTabControl, tab);
      pad.Press({1});
      sim.RunFor(333);
      pad.Press({});
      times += std::to_string(sim.Now()) + ' ';
    }
    screen.Click(kNewProfile);
    screen.Type(new_profile::kName, "Second");
    screen.Click(IDOK);
    screen.Click(kDeleteProfile);
    sim.RunFor(7000);
    screen.Click(platform::IDCANCEL);
    screen.Minimise();
    sim.RunFor(60000);
    screen.IconDoubleClick();
    CloseAll();
    for (const std::string& call : sim.Calls()) times += call + '\n';
    return times + std::to_string(sim.Now());
  }

 private:
  void TestBody() override {}
};

TEST(MainWindowTwice, TheSameActsGiveTheSameCallsInTheSameTime) {
  const std::string first = OneRound().Played();
  const std::string second = OneRound().Played();
  EXPECT_EQ(first, second);
  EXPECT_GT(std::count(first.begin(), first.end(), '\n'), 300);
}

}  // namespace
}  // namespace kelvaro
