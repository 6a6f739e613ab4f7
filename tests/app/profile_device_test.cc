// The device of the open profile: how it is found, the warning without it, and devices that come
// and go.
#include <gtest/gtest.h>

#include <string>

#include "app/resources/control_ids.h"
#include "tests/app/profile_row_fixture.h"

namespace kelvaro {
namespace {

using namespace main_window;

using platform::MB_OK;

using ProfileDeviceTest = ProfileRowTest;

// ---- The device of a profile

TEST_F(ProfileDeviceTest, TheDeviceIsFoundByItsGuidBeforeItsName) {
  AddStick();
  Store("Alpha", [](ProfileFile* file) { SetDevice(file, "Pad", kStickGuid); });
  Begin();
  EXPECT_EQ(Device()->SelectedIndex(), 1);
  EXPECT_EQ(CurrentDeviceGuid(), kStickGuid);
}

TEST_F(ProfileDeviceTest, ADeviceFoundByItsNameCountsWithItsOwnGuid) {
  Store("Alpha", [](ProfileFile* file) { SetDevice(file, "Pad", kStickGuid); });
  const std::string before = BytesOf("Alpha.idprof");
  Begin();
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(CurrentDeviceName(), "Pad");
  EXPECT_EQ(CurrentDeviceGuid(), kPadGuid);
  EXPECT_EQ(OpenProfile().deviceGuid, kStickGuid) << "as in the file";
  EXPECT_EQ(BytesOf("Alpha.idprof"), before);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
}

TEST_F(ProfileDeviceTest, NoDeviceRunsForAProfileWhoseDeviceIsNotThere) {
  WithoutPad();
  AddStick();
  Store("Alpha", [](ProfileFile* file) { SetDevice(file, "Stick", kStickGuid); });
  StoreWithPad("Beta");
  Begin();
  ASSERT_TRUE(Device()->DeviceSelected());
  sim.LogCalls(true);
  Choose("Beta");
  ExpectBoxAndAnswer(PadMissingText("Pad"), "Kelvaro", MB_OK);
  ExpectNoDevice();
  EXPECT_EQ(OpenName(), "Beta");
  EXPECT_EQ(CallsOf(sim, {"timeKillEvent", "Unacquire", "Release", "CreateDevice"}),
            Strings({"timeKillEvent 1", "Unacquire", "Release"}));
}

TEST_F(ProfileDeviceTest, AProfilesDeviceThatAnotherProgramKeepsForItselfIsSaid) {
  AddStick();
  Store("Alpha", [](ProfileFile* file) { SetDevice(file, "Stick", kStickGuid); });
  StoreWithPad("Beta");
  Begin();
  sim.FailNext("Acquire", platform::DIERR_OTHERAPPHASPRIO, 2);  // by its identity, by its name
  Choose("Beta");
  ExpectBoxAndAnswer(
      "Another program keeps the device \"Pad\" for itself.\n\n"
      "End that program, or choose another device. \"kelvaroctl doctor\" tells which programs use "
      "it.",
      "Kelvaro", MB_OK);
  ExpectNoDevice();
}

TEST_F(ProfileDeviceTest, WithoutANameTheGuidCountsForNothing) {
  StoreWithPad("Alpha");
  Store("Beta", [](ProfileFile* file) { SetDevice(file, "", kPadGuid); });
  Begin();
  Choose("Beta");
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  ExpectNoDevice();
}

TEST_F(ProfileDeviceTest, AnIntervalThatIsRefusedLeavesNoDevice) {
  StoreWithPad("Alpha");
  Store("Beta", [](ProfileFile* file) { SetDevice(file, "Pad", kPadGuid, 0); });
  Begin();
  Choose("Beta");
  ExpectBoxAndAnswer(PadMissingText("Pad"), "Kelvaro", MB_OK);
  ExpectNoDevice();
  EXPECT_EQ(Device()->PollInterval(), 5u);
}

TEST_F(ProfileDeviceTest, ADeviceThatFailsByItsGuidIsTriedByItsName) {
  StoreWithPad("Alpha");
  StoreWithPad("Beta");
  Begin();
  sim.LogCalls(true);
  sim.FailNext("CreateDevice");
  Choose("Beta");
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(CallsOf(sim, {"CreateDevice"}), Strings({"CreateDevice", "CreateDevice"}));
  EXPECT_FALSE(screen.BoxUp());
}

// ---- The warning

TEST_F(ProfileDeviceTest, AProfileWithoutADeviceBringsTheDeviceTabUpEachTimeItIsChosen) {
  StoreWithPad("Alpha");
  Store("Beta");
  Begin();
  for (int round = 0; round < 2; ++round) {
    screen.ChooseTab(kTabControl, MainWindow::kControlTab);
    Choose("Beta");
    ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
    EXPECT_EQ(screen.Tab(kTabControl), MainWindow::kDeviceTab);
    EXPECT_EQ(CurrentTab(), MainWindow::kDeviceTab);
    EXPECT_TRUE(screen.Visible(kDeviceList));
    EXPECT_FALSE(screen.Visible(kControlList));
    Choose("Alpha");
    EXPECT_FALSE(screen.BoxUp());
  }
}

TEST_F(ProfileDeviceTest, TheWarningBringsAHiddenWindowBack) {
  Store("Alpha");
  Begin();
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  screen.ChooseTab(kTabControl, MainWindow::kControlTab);
  screen.Minimise();
  ASSERT_FALSE(screen.Shown());

  platform::desktop().PostMessageA(screen.WindowOf(main_window::kDialog), WM_DEVICE_WARNING, 0, 0);
  screen.Settle();
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  EXPECT_TRUE(screen.Shown());
  EXPECT_FALSE(screen.Minimised());
  EXPECT_EQ(screen.Tab(kTabControl), MainWindow::kDeviceTab);
}

TEST_F(ProfileDeviceTest, WithoutTheErrorMessageTheWindowStillComesUpOnTheDeviceTab) {
  Preset("No Device Error Msg", 1);
  WithoutPad();
  AddStick();
  Store("Alpha", [](ProfileFile* file) { SetDevice(file, "Stick", kStickGuid); });
  StoreWithPad("Beta");
  Store("Gamma");
  Begin();
  Choose("Beta");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(screen.Tab(kTabControl), MainWindow::kDeviceTab);

  Choose("Gamma");
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
}

TEST_F(ProfileDeviceTest, WithADeviceThereIsNoWarning) {
  StoreWithPad("Alpha");
  Begin();
  screen.Minimise();
  platform::desktop().PostMessageA(screen.WindowOf(main_window::kDialog), WM_DEVICE_WARNING, 0, 0);
  screen.Settle();
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_FALSE(screen.Shown());
}

// ---- Devices that come and go

TEST_F(ProfileDeviceTest, ADevicePluggedInLateIsFoundByTheRefreshButton) {
  pad.Unplug();
  StoreWithPad("Alpha", "a");
  Begin();
  ExpectBoxAndAnswer(PadMissingText("Pad"), "Kelvaro", MB_OK);
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({kNone}));
  EXPECT_EQ(screen.Text(kNumButtons), "0");

  pad.PlugIn();
  sim.RunFor(20000);
  EXPECT_FALSE(Device()->DeviceSelected()) << "nobody looks for it";
  screen.Click(kRefreshDeviceList);
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({kNone, "Pad"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
  EXPECT_EQ(screen.Text(kNumButtons), "11");
  EXPECT_EQ(CurrentDeviceName(), "Pad");
  EXPECT_EQ(CurrentDeviceGuid(), kPadGuid);
  EXPECT_FALSE(screen.BoxUp());

  KeysPressed();
  pad.Press({1});
  sim.RunFor(50);
  EXPECT_EQ(KeysPressed(), "A");
}

TEST_F(ProfileDeviceTest, ADevicePluggedInLateComesIntoUseWithinFiveSeconds) {
  Preset("Autodetect Device Plugin", 1);
  Preset("No Device Error Msg", 1);
  pad.Unplug();
  StoreWithPad("Alpha");
  Begin();
  EXPECT_FALSE(screen.BoxUp());
  sim.RunFor(12000);
  EXPECT_FALSE(Device()->DeviceSelected());
  pad.PlugIn();
  sim.RunFor(5200);
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");

  // Once it runs nobody looks again, even when it is lost; it comes back by itself.
  sim.LogCalls(true);
  pad.Unplug();
  sim.RunFor(20000);
  EXPECT_EQ(CallsOf(sim, {"EnumDevices"}), Strings());
  EXPECT_TRUE(Device()->DeviceSelected());
  pad.PlugIn();
  sim.RunFor(100);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(ProfileDeviceTest, ARefreshWithoutTheDeviceGivesItUp) {
  AddStick();
  StoreWithPad("Alpha");
  Begin();
  ASSERT_TRUE(Device()->DeviceSelected());
  pad.Unplug();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Click(kRefreshDeviceList);
  ExpectNoDevice();
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({kNone, "Stick"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
  EXPECT_EQ(screen.Text(kNumButtons), "0");
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Bytes(OpenProfile().deviceName), "Pad") << "the profile keeps it";

  pad.PlugIn();
  screen.Click(kRefreshDeviceList);
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
}

TEST_F(ProfileDeviceTest, ARefreshReselectsTheDeviceThatIsThere) {
  StoreWithPad("Alpha");
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  sim.LogCalls(true);
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(DeviceCalls(),
            Strings({"EnumDevices", "timeKillEvent 1", "Unacquire", "Release", "CreateDevice",
                     "Acquire", "timeBeginPeriod 5", "timeSetEvent 5 1"}));
}

TEST_F(ProfileDeviceTest, AnEnumerationThatFailsLeavesTheDeviceRunning) {
  StoreWithPad("Alpha");
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  sim.LogCalls(true);
  sim.FailNext("EnumDevices");
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(DeviceCalls(), Strings({"EnumDevices"}));
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(ProfileDeviceTest, AProfileWithoutADeviceIsLookedAtByThePluginPollAllTheSame) {
  Preset("Autodetect Device Plugin", 1);
  Store("Alpha");
  Begin();
  ExpectBoxAndAnswer(kNoDeviceText, "Kelvaro", MB_OK);
  ASSERT_EQ(CurrentDeviceName(), "");
  sim.LogCalls(true);
  sim.RunFor(10500);
  EXPECT_EQ(CallsOf(sim, {"EnumDevices"}), Strings({"EnumDevices", "EnumDevices"}));
  EXPECT_FALSE(Device()->DeviceSelected());
}

// Whose name stands before "-- None --" in order of their texts.
TEST_F(ProfileDeviceTest, ARefreshWithoutADeviceShowsNoneWhereverItStands) {
  AddPad("(USB) Stick");
  StoreWithPad("Alpha");
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Choose(kDeviceList, kNone);
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({"(USB) Stick", kNone, "Pad"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
}

TEST_F(ProfileDeviceTest, AProfileSetToNoDeviceIsLeftAloneByThePluginPoll) {
  Preset("Autodetect Device Plugin", 1);
  StoreWithPad("Alpha");
  Begin();
  screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  screen.Choose(kDeviceList, kNone);
  ASSERT_EQ(CurrentDeviceName(), kNone);
  sim.LogCalls(true);
  sim.RunFor(20000);
  EXPECT_EQ(CallsOf(sim, {"EnumDevices"}), Strings());

  // The person's own wish fills the list, and selects nothing.
  AddStick();
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(CallsOf(sim, {"EnumDevices"}), Strings({"EnumDevices"}));
  EXPECT_EQ(screen.Rows(kDeviceList), Strings({kNone, "Pad", "Stick"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
  EXPECT_FALSE(Device()->DeviceSelected());
  EXPECT_EQ(CurrentDeviceName(), kNone);
}

}  // namespace
}  // namespace kelvaro
