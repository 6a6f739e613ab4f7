#include <gtest/gtest.h>

#include <string>

#include "app/resources/control_ids.h"
#include "tests/app/calls.h"
#include "tests/app/main_window_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr std::uint32_t kSettingsTab = 3;

constexpr char kMachineSettings[] = "HKLM\\Software\\Marnstone\\Kelvaro";
constexpr char kFormer[] = "HKCU\\Software\\Marnstone\\Vendrix";
constexpr char kMachineFormer[] = "HKLM\\Software\\Marnstone\\Vendrix";
constexpr char kUserRun[] = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr char kMachineRun[] = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";

class AppSettingsTest : public MainWindowTest {
 protected:
  void BeginOnSettings() {
    Begin();
    screen.ChooseTab(kTabControl, kSettingsTab);
  }
  // What was written below a key since the last ClearCalls, by name.
  Strings Written(const std::string& key) {
    const std::string call = "RegSetValueExA " + key + " ";
    Strings names;
    for (const std::string& line : sim.Calls())
      if (line.starts_with(call)) names.push_back(line.substr(call.size()));
    return names;
  }
  void ExpectStartValues() {
    EXPECT_TRUE(Settings().showAutoDetectUsage);
    EXPECT_FALSE(Settings().startMinimized);
    EXPECT_TRUE(Settings().smartCheck);
    EXPECT_TRUE(Settings().shiftReminder);
    EXPECT_FALSE(Settings().noDeviceErrorMsg);
    EXPECT_FALSE(Settings().autodetectDevicePlugin);
  }
  // All of a device's values, of which LoadDeviceSettings needs each.
  void PresetDevice(const std::string& name) {
    for (const char* value :
         {"Acceleration", "Sensitivity", "Axis Damper", "Left Mouse Btn", "Middle Mouse Btn",
          "Right Mouse Btn", "MouseX Type", "MouseX Bank", "MouseY Type", "MouseY Bank",
          "Mouse Wheel Type", "Mouse Wheel Bank", "Mouse Always Active"}) {
      sim.Registry().PutDword(std::string(kSettings) + "\\Devices\\" + name, value, 1);
    }
    sim.Registry().PutDword(std::string(kSettings) + "\\Devices\\" + name, "Poll Interval", 9);
  }
};

TEST_F(AppSettingsTest, WithNothingStoredTheStartValuesHold) {
  FirstStart();
  Begin();
  ASSERT_EQ(screen.Front(), welcome::kDialog) << "the welcome";
  EXPECT_EQ(Bytes(Settings().lastProfile), "");
  ExpectStartValues();
}

TEST_F(AppSettingsTest, EachStoredValueIsTaken) {
  StoreProfile("Race", [this](ProfileFile& made) { UsePad(made); });
  Preset("Show Auto-Detect Usage", 0);
  Preset("Start Minimized", 1);
  Preset("Smart Check", 0);
  Preset("Shift Reminder", 0);
  PresetText("Last Profile", "Race");
  Preset("No Device Error Msg", 1);
  Preset("Autodetect Device Plugin", 1);
  Preset("Welcome Display", 77);
  Begin();
  EXPECT_FALSE(Settings().showAutoDetectUsage);
  EXPECT_TRUE(Settings().startMinimized);
  EXPECT_FALSE(Settings().smartCheck);
  EXPECT_FALSE(Settings().shiftReminder);
  EXPECT_EQ(Bytes(Settings().lastProfile), "Race");
  EXPECT_TRUE(Settings().noDeviceErrorMsg);
  EXPECT_TRUE(Settings().autodetectDevicePlugin);
  EXPECT_EQ(Settings().welcomeDisplay, 77u);
}

TEST_F(AppSettingsTest, AnyNumberButZeroIsTrue) {
  Preset("Start Minimized", 0x80000000u);
  Preset("Smart Check", 2);
  Begin();
  EXPECT_TRUE(Settings().startMinimized);
  EXPECT_TRUE(Settings().smartCheck);
}

TEST_F(AppSettingsTest, AWelcomeThatIsATextIsMissingAndSoComesAgain) {
  PresetText("Welcome Display", "1");
  Begin();
  EXPECT_EQ(screen.Front(), welcome::kDialog);
}

TEST_F(AppSettingsTest, AllAreWrittenAtTheEndInTheirOrder) {
  Begin();
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(Written(kSettings),
            (Strings{"Last Device", "Show Auto-Detect Usage", "Start Minimized", "Smart Check",
                     "Shift Reminder", "Last Profile", "No Device Error Msg",
                     "Autodetect Device Plugin", "Welcome Display"}));
  EXPECT_EQ(Number("Show Auto-Detect Usage"), 1u);
  EXPECT_EQ(Number("Start Minimized"), 0u);
  EXPECT_EQ(Number("Smart Check"), 1u);
  EXPECT_EQ(Number("Shift Reminder"), 1u);
  EXPECT_EQ(SettingText("Last Profile"), kProfile);
  EXPECT_EQ(Number("No Device Error Msg"), 0u);
  EXPECT_EQ(Number("Autodetect Device Plugin"), 0u);
  EXPECT_EQ(Number("Welcome Display"), 1u);
  EXPECT_EQ(SettingText("Last Device"), kPad);
}

// Each one is a wait for the disk.
TEST_F(AppSettingsTest, TheEndCostsOneCommitForTheSettingsAndOneForThePlaces) {
  Begin();
  const std::uint32_t before = sim.Registry().Commits();
  screen.Close();
  EXPECT_EQ(sim.Registry().Commits() - before, 2u);
}

TEST_F(AppSettingsTest, WithoutADeviceItsValuesAreNotWritten) {
  WithoutPad();
  screen.AnswerNext(platform::IDOK);  // the warning
  Begin();
  sim.LogCalls(true);
  screen.Close();
  EXPECT_EQ(Written(kSettings).front(), "Show Auto-Detect Usage");
  EXPECT_EQ(SettingText("Last Device"), std::nullopt);
  EXPECT_FALSE(sim.Registry().HasKey(std::string(kSettings) + "\\Devices"));
}

// Somebody may take the key away while the program runs.
TEST_F(AppSettingsTest, TheKeyIsMadeAgainByWhateverIsStoredNext) {
  StoreProfile("Other");
  AddPad("Stick");
  BeginOnSettings();
  Device()->StopDevice();
  const auto takeAway = [this] {
    sim.Registry().RemoveKey(kSettings);
    EXPECT_EQ(Number("Smart Check"), std::nullopt);
  };
  takeAway();
  screen.Click(kStartMinimized);
  EXPECT_EQ(Number("Start Minimized"), 1u);
  takeAway();
  screen.Choose(kProfileList, "Other");
  EXPECT_EQ(SettingText("Last Profile"), "Other");
  screen.Answer(platform::IDOK);  // it has no device
  takeAway();
  screen.Choose(kDeviceList, "Stick");
  EXPECT_EQ(SettingText("Last Device"), "Stick");
}

TEST_F(AppSettingsTest, TheWelcomeIsWrittenAsThePlainNumber) {
  Preset("Welcome Display", 4000000000u);
  Preset("Start Minimized", 7);
  Begin();
  Post(WM_CLOSE_PROGRAM);
  EXPECT_EQ(Number("Welcome Display"), 4000000000u);
  EXPECT_EQ(Number("Start Minimized"), 1u);
}

TEST_F(AppSettingsTest, AKeyThatCannotBeWrittenLosesThemInSilence) {
  sim.Registry().Protect("HKCU");
  BeginOnSettings();
  screen.Click(kSmartCheck);
  EXPECT_FALSE(Settings().smartCheck);
  screen.Close();
  EXPECT_FALSE(screen.Running());
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(Number("Smart Check"), std::nullopt);
}

TEST_F(AppSettingsTest, TheyAreReadWhereNoKeyCanBeMade) {
  Preset("Smart Check", 0);
  sim.FailAlways("RegCreateKeyA");
  Begin();
  EXPECT_FALSE(Settings().smartCheck);
}

// ---- The last device.

TEST_F(AppSettingsTest, TheLastDeviceIsSelectedWithItsValues) {
  WithoutProfiles();
  AddPad("Stick");
  PresetText("Last Device", "Stick");
  PresetDevice("Stick");
  Preset("Show Auto-Detect Usage", 0);
  Begin();
  EXPECT_EQ(CurrentDeviceName(), "Stick");
  EXPECT_EQ(CurrentDeviceGuid(), Device()->SelectedGuid());
  EXPECT_EQ(Device()->PollInterval(), 9u);
  EXPECT_FALSE(Settings().showAutoDetectUsage);
}

TEST_F(AppSettingsTest, ALastDeviceThatIsNotAttachedIsNone) {
  WithoutProfiles();
  PresetText("Last Device", "Gone");
  Preset("Show Auto-Detect Usage", 0);
  Begin();
  EXPECT_FALSE(Device()->DeviceSelected());
  EXPECT_EQ(CurrentDeviceName(), "");
  EXPECT_EQ(CurrentDeviceGuid(), platform::GUID{});
  EXPECT_FALSE(Settings().showAutoDetectUsage);
}

// Odd, and wanted.
TEST_F(AppSettingsTest, AfterADevicesValuesAreMissingTheUsageHintIsNotRead) {
  WithoutProfiles();
  PresetText("Last Device", kPad);
  Preset("Show Auto-Detect Usage", 0);
  Preset("Smart Check", 0);
  Begin();
  EXPECT_EQ(CurrentDeviceName(), kPad);
  EXPECT_TRUE(Settings().showAutoDetectUsage);
  EXPECT_FALSE(Settings().smartCheck);
  EXPECT_FALSE(sim.Registry().HasKey(std::string(kSettings) + "\\Devices")) << "only looked for";
}

TEST_F(AppSettingsTest, LoadingIsCompleteUnlessADeviceOrTheUsageHintIsMissing) {
  WithoutProfiles();
  Begin();
  EXPECT_FALSE(Window()->settingsTab.LoadAppSettings()) << "no usage hint";
  Preset("Show Auto-Detect Usage", 1);
  EXPECT_TRUE(Window()->settingsTab.LoadAppSettings());
  PresetText("Last Device", "Gone");
  EXPECT_TRUE(Window()->settingsTab.LoadAppSettings());
}

// ---- The boxes of the tab.

TEST_F(AppSettingsTest, EachBoxIsSavedAtOnce) {
  BeginOnSettings();
  for (const std::uint32_t box : {kStartMinimized, kSmartCheck}) {
    const char* const name = box == kSmartCheck ? "Smart Check" : "Start Minimized";
    const bool before = screen.Checked(box);
    EXPECT_EQ(before, box == kSmartCheck);
    screen.Click(box);
    EXPECT_EQ(Number(name), before ? 0u : 1u);
    screen.Click(box);
    EXPECT_EQ(Number(name), before ? 1u : 0u);
  }
}

TEST_F(AppSettingsTest, TheBoxesShowWhatIsStored) {
  Preset("Start Minimized", 1);
  Preset("Smart Check", 0);
  Begin();
  screen.IconDoubleClick();
  screen.ChooseTab(kTabControl, kSettingsTab);
  EXPECT_TRUE(screen.Checked(kStartMinimized));
  EXPECT_FALSE(screen.Checked(kSmartCheck));
}

TEST_F(AppSettingsTest, TheAdvancedSettingGoesIntoBothValues) {
  BeginOnSettings();
  screen.Click(kAdvanced);
  ASSERT_EQ(screen.Front(), advanced_settings::kDialog);
  EXPECT_FALSE(screen.Checked(advanced_settings::kAutodetectDevicePlugin));
  screen.Click(advanced_settings::kAutodetectDevicePlugin);
  screen.Click(platform::IDOK);
  EXPECT_TRUE(Settings().autodetectDevicePlugin);
  EXPECT_TRUE(Settings().noDeviceErrorMsg);
  EXPECT_EQ(Number("Autodetect Device Plugin"), 1u);
  EXPECT_EQ(Number("No Device Error Msg"), 1u);
}

TEST_F(AppSettingsTest, TheTwoValuesOfTheAdvancedSettingAreReadEachByItself) {
  Preset("No Device Error Msg", 1);
  BeginOnSettings();
  EXPECT_TRUE(Settings().noDeviceErrorMsg);
  screen.Click(kAdvanced);
  EXPECT_FALSE(screen.Checked(advanced_settings::kAutodetectDevicePlugin));
  screen.Click(platform::IDOK);
  EXPECT_FALSE(Settings().noDeviceErrorMsg);
}

TEST_F(AppSettingsTest, CancelOfTheAdvancedSettingsChangesNothing) {
  Preset("Autodetect Device Plugin", 1);
  BeginOnSettings();
  sim.LogCalls(true);
  screen.Click(kAdvanced);
  EXPECT_TRUE(screen.Checked(advanced_settings::kAutodetectDevicePlugin));
  screen.Click(advanced_settings::kAutodetectDevicePlugin);
  screen.Click(platform::IDCANCEL);
  EXPECT_TRUE(Settings().autodetectDevicePlugin);
  EXPECT_FALSE(Settings().noDeviceErrorMsg);
  EXPECT_EQ(Written(kSettings), Strings{});
}

// ---- Launch at startup.

TEST_F(AppSettingsTest, TheBoxIsCheckedByAStringOfTheUsersKeyOrElseOfTheMachines) {
  const auto check = [this](const char* why, bool checked) {
    BeginOnSettings();
    EXPECT_EQ(screen.Checked(kLaunchAtStartup), checked) << why;
    CloseAll();
  };
  sim.Registry().PutString(kMachineRun, "Kelvaro", "elsewhere");
  check("without the user's key, whatever it says", true);
  sim.Registry().PutKey(kUserRun);
  check("the machine's doesn't count beside the user's key", false);
  sim.Registry().PutDword(kUserRun, "Kelvaro", 1);
  check("no string", false);
  sim.Registry().PutString(kUserRun, "Kelvaro", "elsewhere");
  check("the user's", true);
}

TEST_F(AppSettingsTest, CheckingWritesTheProgramsPathAndUncheckingDeletesIt) {
  sim.Registry().PutKey(kUserRun);
  BeginOnSettings();
  screen.Click(kLaunchAtStartup);
  EXPECT_EQ(sim.Registry().Text(kUserRun, "Kelvaro"), "/game/kelvaro");
  EXPECT_FALSE(sim.Registry().HasKey(kMachineRun));
  screen.Click(kLaunchAtStartup);
  EXPECT_EQ(sim.Registry().Value(kUserRun, "Kelvaro"), std::nullopt);
}

TEST_F(AppSettingsTest, WithoutTheUsersKeyCheckingMakesTheMachines) {
  BeginOnSettings();
  EXPECT_FALSE(sim.Registry().HasKey(kMachineRun)) << "not before";
  screen.Click(kLaunchAtStartup);
  EXPECT_EQ(sim.Registry().Text(kMachineRun, "Kelvaro"), "/game/kelvaro");
  EXPECT_FALSE(sim.Registry().HasKey(kUserRun));
  screen.Click(kLaunchAtStartup);
  EXPECT_EQ(sim.Registry().Value(kMachineRun, "Kelvaro"), std::nullopt);

  screen.Click(kLaunchAtStartup);
  sim.Registry().RemoveKey(kMachineRun);
  screen.Click(kLaunchAtStartup);
  EXPECT_FALSE(sim.Registry().HasKey(kMachineRun)) << "unchecking makes none";
}

TEST(AppSettings, TwoOfThemHaveACheckBox) {
  Strings names;
  for (const Setting& setting : kelvaro::Settings())
    if (setting.checkBox != 0) names.push_back(setting.name);
  EXPECT_EQ(names, (Strings{"Start Minimized", "Smart Check"}));
}

TEST_F(AppSettingsTest, ASettingWithoutACheckBoxIsNotThatOfAnyControl) {
  BeginOnSettings();
  const std::uint32_t before = sim.Registry().Commits();
  Notify(0, platform::Notice::Clicked);
  EXPECT_EQ(sim.Registry().Commits(), before);
}

TEST_F(AppSettingsTest, AKeyThatRefusesLeavesTheBoxAsClicked) {
  sim.Registry().Protect("HKLM");
  BeginOnSettings();
  screen.Click(kLaunchAtStartup);
  EXPECT_TRUE(screen.Checked(kLaunchAtStartup));
  EXPECT_FALSE(sim.Registry().HasKey(kMachineRun));
  screen.Click(kLaunchAtStartup);
  EXPECT_FALSE(screen.Checked(kLaunchAtStartup));
  EXPECT_TRUE(screen.Boxes().empty());
}

// ---- Settings of the product before.

TEST_F(AppSettingsTest, TheWholeTreeOfTheFormerProductIsTakenOver) {
  FirstStart();
  sim.Registry().PutDword(kFormer, "Smart Check", 0);
  sim.Registry().PutDword(kFormer, "Welcome Display", 1);
  sim.Registry().PutString(kFormer, "Last Profile", kProfile);
  sim.Registry().PutDword(std::string(kFormer) + "\\Devices\\Old", "Sensitivity", 33);
  Begin();
  EXPECT_EQ(screen.Front(), main_window::kDialog) << "the welcome was seen before";
  EXPECT_FALSE(Settings().smartCheck);
  EXPECT_EQ(Bytes(Settings().lastProfile), kProfile);
  EXPECT_EQ(sim.Registry().Number(std::string(kSettings) + "\\Devices\\Old", "Sensitivity"), 33u);
  EXPECT_EQ(sim.Registry().Number(kFormer, "Smart Check"), 0u) << "stays as it is";
}

TEST_F(AppSettingsTest, TheyAreNotTakenOverWhereTheNewKeyIs) {
  sim.Registry().PutDword(kFormer, "Smart Check", 0);
  Begin();
  EXPECT_TRUE(Settings().smartCheck);
}

TEST_F(AppSettingsTest, TheMachinesKeyIsTakenOverApart) {
  sim.Registry().PutString(kMachineFormer, "maker", "m");
  Begin();
  EXPECT_EQ(sim.Registry().Text(kMachineSettings, "maker"), "m");
}

TEST_F(AppSettingsTest, ThereIsOneTryOnly) {
  FirstStart();
  Begin();
  EXPECT_TRUE(sim.Registry().HasKey(kMachineSettings)) << "made though there was nothing to copy";
  CloseAll();
  sim.Registry().PutDword(kFormer, "Smart Check", 0);
  sim.Registry().PutString(kMachineFormer, "maker", "m");
  Begin();
  EXPECT_TRUE(Settings().smartCheck);
  EXPECT_EQ(sim.Registry().ValueNames(kMachineSettings), Strings{});
}

TEST_F(AppSettingsTest, WithoutTheRightToMakeTheMachinesKeyItIsTriedAtEachStart) {
  sim.Registry().Protect("HKLM");
  sim.LogCalls(true);
  Begin();
  EXPECT_EQ(CountCalls(sim, "RegCreateKeyA HKLM\\"), 1u);
  EXPECT_TRUE(screen.Boxes().empty());
  CloseAll();
  sim.ClearCalls();
  Begin();
  EXPECT_EQ(CountCalls(sim, "RegCreateKeyA HKLM\\"), 1u);
}

TEST_F(AppSettingsTest, TheMachinesPassComesFirst) {
  FirstStart();
  sim.LogCalls(true);
  Begin();
  Strings calls = CallsOf(sim, {"RegOpenKeyA", "RegCreateKeyA"});
  calls.resize(6);
  EXPECT_EQ(calls, (Strings{"RegOpenKeyA HKLM\\Software\\Marnstone\\Kelvaro",
                            "RegCreateKeyA HKLM\\Software\\Marnstone\\Kelvaro",
                            "RegOpenKeyA HKLM\\Software\\Marnstone\\Vendrix",
                            "RegOpenKeyA HKCU\\Software\\Marnstone\\Kelvaro",
                            "RegCreateKeyA HKCU\\Software\\Marnstone\\Kelvaro",
                            "RegOpenKeyA HKCU\\Software\\Marnstone\\Vendrix"}));
}

}  // namespace
}  // namespace kelvaro
