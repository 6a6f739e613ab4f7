// The Device tab as the person sees and works it: the list, the counts, the interval and the rate,
// each refusal in its words, and what is kept for a device by its name.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/platform.h"
#include "app/resources/control_ids.h"
#include "engine/device_snapshot.h"
#include "tests/app/calls.h"
#include "tests/app/held_lock.h"
#include "tests/app/main_window_fixture.h"
#include "tests/platform/forwarded_registry.h"

namespace kelvaro {
namespace {

using namespace main_window;

constexpr char kNone[] = "-- None --";
constexpr char kPadSettings[] = "HKCU\\Software\\Marnstone\\Kelvaro\\Devices\\Pad";
constexpr char kStickSettings[] = "HKCU\\Software\\Marnstone\\Kelvaro\\Devices\\Stick";

constexpr char kRangeCaption[] = "Value Out of Range";
constexpr char kIntervalRange[] = "Please enter a value from 1 to 1000";
constexpr char kNoNumber[] = "Please enter a positive integer.";

const platform::GUID kNoGuid{};

// The values in the order in which they are written.
constexpr const char* kValues[] = {"Poll Interval",    "Acceleration",       "Sensitivity",
                                   "Axis Damper",      "Left Mouse Btn",     "Middle Mouse Btn",
                                   "Right Mouse Btn",  "MouseX Type",        "MouseX Bank",
                                   "MouseY Type",      "MouseY Bank",        "Mouse Wheel Type",
                                   "Mouse Wheel Bank", "Mouse Always Active"};

// "kind index offset".
std::string Words(const TriggerItem& item) {
  return std::to_string(item.kind) + ' ' + std::to_string(item.index) + ' ' +
         std::to_string(item.value);
}

std::string Hex(std::uint64_t value) {
  char text[20];
  std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(value));
  return text;
}

// All that a device's values can change, but for the interval.
std::string MouseWords(const MouseSettings& mouse) {
  std::string text = std::to_string(mouse.acceleration);
  text += ' ' + std::to_string(mouse.movementSensitivity);
  text += ' ' + std::to_string(mouse.movementDamper);
  text += " | " + std::to_string(mouse.leftButton) + ' ' + Hex(mouse.leftMask);
  text += ", " + std::to_string(mouse.middleButton) + ' ' + Hex(mouse.middleMask);
  text += ", " + std::to_string(mouse.rightButton) + ' ' + Hex(mouse.rightMask);
  text += " | " + Words(mouse.mouseX) + ", " + Words(mouse.mouseY) + ", " + Words(mouse.mouseWheel);
  text += mouse.mouseAlwaysActive ? " | active" : " | off";
  return text;
}

constexpr char kUntouchedMouse[] = "0 15 5 | 0 0, 0 0, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off";

class DeviceTabTest : public MainWindowTest {
 protected:
  void BeginHere() {
    Begin();
    screen.ChooseTab(kTabControl, MainWindow::kDeviceTab);
  }

  // With a profile of no device, of which the window warns on this tab.
  void BeginWithoutDevice() {
    StoreProfile(kProfile);
    Begin();
    screen.Answer(platform::IDOK);
  }

  void StoreWithInterval(std::uint32_t interval) {
    StoreProfile(kProfile, [&](ProfileFile& made) {
      UsePad(made);
      made.pollInterval = interval;
    });
  }

  // Another device beside the pad, of 4 buttons, 2 axes and 2 hats.
  SimulatedDevice& AddStick() {
    DeviceDescription description;
    description.name = "Stick";
    description.guid = kStickGuid;
    description.buttons = 4;
    description.axes = 2;
    description.povs = 2;
    return sim.AddDevice(description);
  }

  // Types into a field and leaves it.
  void Enter(std::uint32_t field, const std::string& text) {
    screen.Type(field, text);
    screen.FocusOn(kDefaultRate);
  }

  void ExpectBox(const std::string& text, const std::string& caption, std::uint32_t type) {
    ASSERT_TRUE(screen.BoxUp());
    EXPECT_EQ(screen.Box().text, text);
    EXPECT_EQ(screen.Box().caption, caption);
    EXPECT_EQ(screen.Box().type, type);
    EXPECT_EQ(screen.Box().owner, Handle());
  }

  // A refusal of what was entered, with the focus back and nothing changed.
  void ExpectRefused(std::uint32_t field, const std::string& text, const std::string& caption,
                     std::uint32_t type) {
    const std::size_t before = screen.Boxes().size();
    ExpectBox(text, caption, type);
    screen.Answer(platform::IDOK);
    EXPECT_EQ(screen.Boxes().size(), before) << "a second box";
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_EQ(screen.Focus(), field);
    EXPECT_EQ(Device()->PollInterval(), 5u);
    EXPECT_EQ(OpenProfile().pollInterval, 5u);
    EXPECT_EQ(Stored(kProfile)->pollInterval, 5u);
    EXPECT_EQ(sim.Registry().Number(kPadSettings, "Poll Interval"), std::nullopt);
  }

  void ExpectInterval(std::uint32_t interval, const std::string& rate) {
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_EQ(screen.Text(kInterval), std::to_string(interval));
    EXPECT_EQ(screen.Text(kRate), rate);
    EXPECT_EQ(Device()->PollInterval(), interval);
    EXPECT_EQ(OpenProfile().pollInterval, interval);
    EXPECT_EQ(Stored(kProfile)->pollInterval, interval);
    EXPECT_EQ(sim.Registry().Number(kPadSettings, "Poll Interval"), interval);
  }

  const platform::GUID kStickGuid{0xA1, 0xB2, 0xC3, {1, 1, 2, 3, 5, 8, 13, 21}};
};

// The list and the counts

TEST_F(DeviceTabTest, TheListHasNoneAndAllDevicesInOrderOfTheirNames) {
  AddPad("wheel");
  AddPad("Arcade");
  AddPad("Yoke");
  BeginHere();
  EXPECT_EQ(screen.Rows(kDeviceList), (Strings{kNone, "Arcade", "Pad", "wheel", "Yoke"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
}

TEST_F(DeviceTabTest, EachRowLeadsToItsDeviceWhereNamesAreEqual) {
  DeviceDescription twin;
  twin.guid.Data1 = 77;
  sim.AddDevice(twin);
  twin.guid.Data1 = 88;
  sim.AddDevice(twin);
  BeginHere();
  EXPECT_EQ(screen.Rows(kDeviceList), (Strings{kNone, "Pad", "Pad", "Pad"}));

  std::vector<std::uint32_t> seen;
  for (std::int32_t row = 1; row <= 3; ++row) {
    const std::int32_t index = platform::controls().ComboGetItemData(Handle(), kDeviceList, row);
    EXPECT_EQ(Device()->DeviceName(index).Length(), 3u);
    seen.push_back(Device()->DeviceGuid(index).Data1);
  }
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 77, 88}));
  EXPECT_EQ(platform::controls().ComboGetItemData(Handle(), kDeviceList, 0), -2);

  // The chosen row is that of the device in use.
  const std::int32_t row = screen.ChosenRow(kDeviceList);
  const std::int32_t index = platform::controls().ComboGetItemData(Handle(), kDeviceList, row);
  EXPECT_EQ(Device()->DeviceGuid(index).Data1, 1u);

  // And stays so with another of them.
  platform::controls().ComboSetCurSel(Handle(), kDeviceList, 3);
  Notify(kDeviceList, platform::Notice::SelectionChanged);
  EXPECT_EQ(CurrentDeviceGuid().Data1, seen.at(2));
  EXPECT_EQ(screen.ChosenRow(kDeviceList), 3);
}

// Names before "-- None --" in order of their texts.
TEST_F(DeviceTabTest, WithoutADeviceTheListShowsNoneWhereverItStands) {
  AddPad("(USB) Stick");
  BeginWithoutDevice();
  EXPECT_EQ(screen.Rows(kDeviceList), (Strings{"(USB) Stick", kNone, "Pad"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);

  screen.Choose(kDeviceList, "(USB) Stick");
  EXPECT_EQ(CurrentDeviceName(), "(USB) Stick");
  EXPECT_EQ(screen.Chosen(kDeviceList), "(USB) Stick");
}

TEST_F(DeviceTabTest, CountsAreThoseOfTheSelectedDevice) {
  AddStick();
  BeginHere();
  EXPECT_EQ(screen.Text(kNumButtons), "11");
  EXPECT_EQ(screen.Text(kNumAxis), "6");
  EXPECT_EQ(screen.Text(kNumPovs), "1");
  screen.Choose(kDeviceList, "Stick");
  EXPECT_EQ(screen.Text(kNumButtons), "4");
  EXPECT_EQ(screen.Text(kNumAxis), "2");
  EXPECT_EQ(screen.Text(kNumPovs), "2");
}

TEST_F(DeviceTabTest, WithoutADeviceCountsAre0) {
  BeginWithoutDevice();
  EXPECT_EQ(screen.Text(kNumButtons), "0");
  EXPECT_EQ(screen.Text(kNumAxis), "0");
  EXPECT_EQ(screen.Text(kNumPovs), "0");
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
}

// A list that was cut off by a failed enumeration has no identities.
TEST_F(DeviceTabTest, ADeviceThatTheListHasNoMoreIsShownByItsName) {
  AddPad("Arcade");
  BeginHere();
  sim.FailNext("EnumDevices");
  screen.Click(kRefreshDeviceList);
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(Device()->DeviceCount(), 0);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");

  // There is nothing behind the other rows either.
  for (const char* row : {"Arcade", "Pad", "Arcade"}) {
    screen.Choose(kDeviceList, row);
    EXPECT_FALSE(screen.BoxUp()) << row;
    EXPECT_EQ(CurrentDeviceName(), "Pad");
    EXPECT_TRUE(Device()->DeviceSelected());
  }
  sim.FailNext("EnumDevices");
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
}

TEST_F(DeviceTabTest, WithoutADeviceARefreshThatFailsShowsNone) {
  AddPad("Arcade");
  BeginWithoutDevice();
  sim.FailNext("EnumDevices");
  screen.Click(kRefreshDeviceList);
  EXPECT_EQ(screen.Rows(kDeviceList), (Strings{kNone, "Arcade", "Pad"}));
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
}

// Choosing a device

TEST_F(DeviceTabTest, NoneStopsTheDeviceAndIsSavedInTheProfile) {
  PresetText("Last Device", "Pad");
  BeginHere();
  sim.LogCalls(true);
  screen.Choose(kDeviceList, kNone);
  EXPECT_FALSE(Device()->DeviceSelected());
  EXPECT_EQ(CurrentDeviceName(), kNone);
  EXPECT_EQ(CurrentDeviceGuid(), kNoGuid);
  EXPECT_TRUE(OpenProfile().deviceName.IsEmpty());
  EXPECT_EQ(OpenProfile().deviceGuid, kNoGuid);
  EXPECT_TRUE(Stored(kProfile)->deviceName.IsEmpty());
  EXPECT_EQ(Stored(kProfile)->deviceGuid, kNoGuid);
  EXPECT_EQ(screen.Text(kNumButtons), "0");
  EXPECT_EQ(screen.Chosen(kDeviceList), kNone);
  EXPECT_TRUE(screen.Boxes().empty());
  // With no device there is none to keep values for.
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
  EXPECT_EQ(SettingText("Last Device"), "Pad");
}

TEST_F(DeviceTabTest, AllValuesOfADeviceThatIsChosenAreOneCommit) {
  AddStick();
  BeginHere();
  const std::uint32_t before = sim.Registry().Commits();
  screen.Choose(kDeviceList, "Stick");
  ASSERT_EQ(SettingText("Last Device"), "Stick");
  EXPECT_EQ(sim.Registry().Commits() - before, 1u);
}

TEST_F(DeviceTabTest, AnotherDeviceIsOpenedAndSavedEverywhere) {
  AddStick();
  StoreWithInterval(8);
  BeginHere();
  screen.Choose(kDeviceList, "Stick");
  EXPECT_EQ(Bytes(Device()->SelectedName()), "Stick");
  EXPECT_EQ(CurrentDeviceName(), "Stick");
  EXPECT_EQ(CurrentDeviceGuid(), kStickGuid);
  EXPECT_EQ(Bytes(OpenProfile().deviceName), "Stick");
  const auto stored = Stored(kProfile);
  ASSERT_TRUE(stored);
  EXPECT_EQ(Bytes(stored->deviceName), "Stick");
  EXPECT_EQ(stored->deviceGuid, kStickGuid);
  EXPECT_EQ(stored->pollInterval, 8u);
  EXPECT_EQ(SettingText("Last Device"), "Stick");
  EXPECT_EQ(sim.Registry().Number(kStickSettings, "Poll Interval"), 8u);
  EXPECT_FALSE(sim.Registry().HasKey(kPadSettings));
  EXPECT_EQ(screen.Chosen(kDeviceList), "Stick");
}

// The manager's interval, which the profile may have been refused.
TEST_F(DeviceTabTest, AnotherDeviceBringsTheManagersIntervalIntoTheProfile) {
  BeginWithoutDevice();
  ASSERT_TRUE(Device()->SetPollInterval(12));
  screen.Choose(kDeviceList, "Pad");
  EXPECT_EQ(OpenProfile().pollInterval, 12u);
  EXPECT_EQ(Stored(kProfile)->pollInterval, 12u);
  EXPECT_EQ(screen.Text(kInterval), "12");
  EXPECT_EQ(screen.Text(kRate), "83");
}

TEST_F(DeviceTabTest, TheSameDeviceAgainDoesNothing) {
  BeginHere();
  sim.LogCalls(true);
  sim.Disk().ClearLog();
  screen.Choose(kDeviceList, "Pad");
  EXPECT_EQ(CallsOf(sim, {"timeKillEvent"}), Strings{});
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
  EXPECT_TRUE(sim.Disk().Log().empty());
  EXPECT_TRUE(Device()->DeviceSelected());
}

TEST_F(DeviceTabTest, ADeviceThatCannotBeOpenedIsSaidAndNothingElseHappens) {
  AddStick();
  BeginHere();
  sim.FailNext("CreateDevice");
  sim.LogCalls(true);
  sim.Disk().ClearLog();
  screen.Choose(kDeviceList, "Stick");
  ExpectBox("Error selecting device. Please try again.", "Unknown Error", platform::MB_OK);
  screen.Answer(platform::IDOK);
  EXPECT_EQ(CurrentDeviceName(), "Pad");
  EXPECT_EQ(Bytes(OpenProfile().deviceName), "Pad");
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
  EXPECT_TRUE(sim.Disk().Log().empty());
  EXPECT_EQ(screen.Chosen(kDeviceList), "Stick");
  EXPECT_EQ(screen.Text(kNumButtons), "11");

  // As it says.
  screen.Choose(kDeviceList, "Stick");
  EXPECT_EQ(CurrentDeviceName(), "Stick");
}

TEST_F(DeviceTabTest, ADeviceIsTakenAloneWhereItsNameIsStored) {
  AddStick();
  PresetText("Only For Kelvaro", "Wheel;; ; Stick ;Pad 2");
  BeginHere();
  sim.LogCalls(true);
  const auto levelOf = [&](const char* device) {
    screen.Choose(kDeviceList, device);
    const std::string call = CallsOf(sim, {"SetCooperativeLevel"}).back();
    return call.substr(call.rfind(' '));
  };
  EXPECT_EQ(levelOf("Stick"), " 9");
  EXPECT_EQ(levelOf("Pad"), " 10");
  CloseAll();
  EXPECT_EQ(SettingText("Only For Kelvaro"), "Wheel;; ; Stick ;Pad 2");
}

TEST_F(DeviceTabTest, ADeviceThatAnotherProgramKeepsForItselfIsSaid) {
  AddStick();
  BeginHere();
  sim.FailNext("Acquire", platform::DIERR_OTHERAPPHASPRIO);
  screen.Choose(kDeviceList, "Stick");
  ExpectBox(
      "Another program keeps the device \"Stick\" for itself.\n\n"
      "End that program, or choose another device. \"kelvaroctl doctor\" tells which programs use "
      "it.",
      "Device in Use", platform::MB_OK);
  screen.Answer(platform::IDOK);
  EXPECT_EQ(CurrentDeviceName(), "Pad");
}

TEST_F(DeviceTabTest, ChoosingADeviceWaitsForTheProfilesLock) {
  BeginHere();
  for (const char* row : {kNone, "Pad"}) {
    const HeldLock held(sim, OpenProfile().profileLock, 500);
    const std::uint64_t before = sim.Now();
    screen.Choose(kDeviceList, row);
    EXPECT_EQ(sim.Now() - before, 500u) << row;
  }
}

TEST_F(DeviceTabTest, AChoiceDoesNotCountWhileAFieldIsRefused) {
  AddStick();
  BeginHere();
  Enter(kInterval, "0");
  ASSERT_TRUE(screen.BoxUp());
  platform::controls().ComboSetCurSel(
      Handle(), kDeviceList,
      platform::controls().ComboFindStringExact(Handle(), kDeviceList, "Stick"));
  Notify(kDeviceList, platform::Notice::SelectionChanged);
  EXPECT_EQ(CurrentDeviceName(), "Pad");
  screen.Answer(platform::IDOK);
  Enter(kInterval, "5");
  screen.Choose(kDeviceList, kNone);
  EXPECT_EQ(CurrentDeviceName(), kNone);
}

TEST_F(DeviceTabTest, ADeviceIsKeptEvenWhereNothingCanBeWritten) {
  AddStick();
  BeginHere();
  sim.FailAlways("RegCreateKeyA");
  sim.Disk().FailOperation(2);  // the look at the first folder
  screen.Choose(kDeviceList, "Stick");
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_EQ(CurrentDeviceName(), "Stick");
  EXPECT_EQ(Bytes(Stored(kProfile)->deviceName), "Pad");
}

// The interval

TEST_F(DeviceTabTest, TheFieldsShowTheIntervalAndHowManyFitIntoASecond) {
  const struct {
    std::uint32_t interval;
    const char* rate;
  } cases[] = {{1, "1000"}, {3, "333"}, {5, "200"}, {6, "166"}, {7, "142"},
               {16, "62"},  {333, "3"}, {501, "1"}, {1000, "1"}};
  for (const auto& row : cases) {
    StoreWithInterval(row.interval);
    BeginHere();
    EXPECT_EQ(screen.Text(kInterval), std::to_string(row.interval));
    EXPECT_EQ(screen.Text(kRate), row.rate) << row.interval;
    CloseAll();
  }
}

TEST_F(DeviceTabTest, AnotherIntervalIsInUseAtOnceAndSavedEverywhere) {
  const struct {
    const char* text;
    std::uint32_t interval;
    const char* rate;
  } cases[] = {{"1", 1, "1000"},
               {"20", 20, "50"},
               {"1000", 1000, "1"},
               {"007", 7, "142"},
               {" 30 ", 30, "33"}};
  BeginHere();
  for (const auto& row : cases) {
    sim.LogCalls(true);
    sim.ClearCalls();
    Enter(kInterval, row.text);
    ExpectInterval(row.interval, row.rate);
    EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}),
              Strings{"timeSetEvent " + std::to_string(row.interval) + " 1"});
  }
  EXPECT_EQ(SettingText("Last Device"), "Pad");
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(DeviceTabTest, TheIntervalThatIsInUseDoesNothing) {
  BeginHere();
  sim.LogCalls(true);
  sim.Disk().ClearLog();
  Enter(kInterval, "5");
  Enter(kInterval, "05");
  EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}), Strings{});
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
  EXPECT_TRUE(sim.Disk().Log().empty());
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(DeviceTabTest, AnIntervalOutside1To1000IsRefused) {
  BeginHere();
  for (const char* text :
       {"0", "000", "1001", "4294967295", "4294967301", "99999999999999999999"}) {
    Enter(kInterval, text);
    ExpectRefused(kInterval, kIntervalRange, kRangeCaption, platform::MB_OK);
    EXPECT_EQ(screen.Text(kInterval), text);
  }
  Enter(kInterval, "5");
  EXPECT_FALSE(screen.BoxUp());
}

TEST_F(DeviceTabTest, AFieldThatIsRefusedKeepsTheTab) {
  BeginHere();
  screen.Type(kInterval, "0");
  screen.ChooseTab(kTabControl, MainWindow::kMouseTab);
  ExpectRefused(kInterval, kIntervalRange, kRangeCaption, platform::MB_OK);
  EXPECT_EQ(screen.Tab(kTabControl), MainWindow::kDeviceTab);
  EXPECT_EQ(CurrentTab(), MainWindow::kDeviceTab);
}

TEST_F(DeviceTabTest, WhatIsNoNumberIsRefusedInEitherField) {
  BeginHere();
  for (const std::uint32_t field : {kInterval, kRate}) {
    for (const char* text : {"", " ", "abc", "5a", "-5", "+5", "5.0", "1,000", "5 5"}) {
      Enter(field, text);
      ExpectRefused(field, kNoNumber, "Kelvaro", platform::MB_ICONEXCLAMATION);
    }
    Enter(field, field == kInterval ? "5" : "200");
    EXPECT_FALSE(screen.BoxUp());
  }
}

// Both fields are read whichever is left.
TEST_F(DeviceTabTest, TheFieldThatIsNoNumberIsNamedAndNotTheOneThatIsLeft) {
  BeginHere();
  PutText(kRate, "fast");
  Enter(kInterval, "20");
  ExpectRefused(kRate, kNoNumber, "Kelvaro", platform::MB_ICONEXCLAMATION);

  PutText(kInterval, "slow");
  screen.FocusOn(kRate);
  screen.FocusOn(kDefaultRate);
  ExpectRefused(kInterval, kNoNumber, "Kelvaro", platform::MB_ICONEXCLAMATION);
}

// The focus went on to the other field, which loses it to the box.
TEST_F(DeviceTabTest, ARefusalTakesTheFocusFromTheOtherFieldWithoutASecondOne) {
  BeginHere();
  PutText(kRate, "fast");
  screen.Type(kInterval, "slow");
  screen.FocusOn(kRate);
  LoseFocus(kRate);
  EXPECT_EQ(screen.Boxes().size(), 1u);
  ExpectRefused(kInterval, kNoNumber, "Kelvaro", platform::MB_ICONEXCLAMATION);

  PutText(kRate, "0");
  screen.Type(kInterval, "0");
  screen.FocusOn(kRate);
  LoseFocus(kRate);
  EXPECT_EQ(screen.Boxes().size(), 2u);
  ExpectRefused(kInterval, kIntervalRange, kRangeCaption, platform::MB_OK);
}

TEST_F(DeviceTabTest, SoDoesARefusalByTheTimer) {
  sim.SetTimerLimits(5, 500);
  BeginHere();
  PutText(kRate, "0");
  screen.Type(kInterval, "4");
  screen.FocusOn(kRate);
  LoseFocus(kRate);
  ExpectBox("Error Setting Poll Rate", "Internal Error", platform::MB_OK);
  screen.Answer(platform::IDOK);
  EXPECT_EQ(screen.Boxes().size(), 1u);
}

TEST_F(DeviceTabTest, AnIntervalBeyondTheTimersLimitsIsRefusedByTheTimer) {
  sim.SetTimerLimits(10, 500);
  StoreWithInterval(20);
  BeginHere();
  for (const char* text : {"9", "501"}) {
    sim.LogCalls(true);
    sim.ClearCalls();
    sim.Disk().ClearLog();
    Enter(kInterval, text);
    ExpectBox("Error Setting Poll Rate", "Internal Error", platform::MB_OK);
    EXPECT_EQ(CallsOf(sim, {"timeKillEvent"}), Strings{});  // not before the answer
    screen.Answer(platform::IDOK);
    EXPECT_FALSE(screen.BoxUp());
    EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}), Strings{"timeSetEvent 20 1"});
    EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
    EXPECT_TRUE(sim.Disk().Log().empty());
    EXPECT_TRUE(Device()->DeviceSelected());
    EXPECT_EQ(OpenProfile().pollInterval, 20u);
    EXPECT_EQ(screen.Text(kInterval), text);
  }
}

TEST_F(DeviceTabTest, ARefusalByTheTimerGoesWithTheProgram) {
  sim.SetTimerLimits(10, 500);
  StoreWithInterval(20);
  BeginHere();
  Enter(kInterval, "9");
  ASSERT_TRUE(screen.BoxUp());
  Post(WM_CLOSE_PROGRAM);
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_FALSE(screen.Running());
}

TEST_F(DeviceTabTest, AnotherIntervalWaitsForTheProfilesLock) {
  BeginHere();
  screen.Type(kInterval, "20");
  const HeldLock held(sim, OpenProfile().profileLock, 500);
  const std::uint64_t before = sim.Now();
  screen.FocusOn(kDefaultRate);
  EXPECT_EQ(sim.Now() - before, 500u);
}

// The rate

TEST_F(DeviceTabTest, ARateIsTurnedIntoAWholeInterval) {
  const struct {
    const char* text;
    std::uint32_t interval;
    const char* shown;
  } cases[] = {{"1", 1000, "1"}, {"300", 3, "333"},  {"999", 1, "1000"},
               {"50", 20, "50"}, {"501", 1, "1000"}, {"500", 2, "500"}};
  BeginHere();
  for (const auto& row : cases) {
    Enter(kRate, row.text);
    ExpectInterval(row.interval, row.shown);
  }
}

TEST_F(DeviceTabTest, ARateOfTheIntervalThatIsInUseStaysAsItWasTyped) {
  BeginHere();
  sim.LogCalls(true);
  Enter(kRate, "199");  // 1000 / 199 is 5
  EXPECT_EQ(screen.Text(kRate), "199");
  EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}), Strings{});
  EXPECT_TRUE(screen.Boxes().empty());
}

TEST_F(DeviceTabTest, ARateWithoutAnIntervalIsRefusedInItsOwnSpelling) {
  BeginHere();
  for (const char* text : {"0", "1001", "4294967295"}) {
    Enter(kRate, text);
    ExpectRefused(kRate,
                  std::string("Pleaes enter a value from 1 to 1000.\nThe rate of ") + text +
                      " equates to an interval of 0",
                  kRangeCaption, platform::MB_OK);
  }
}

TEST_F(DeviceTabTest, ARateBeyondTheTimersLimitsIsRefusedByTheTimer) {
  sim.SetTimerLimits(10, 500);
  StoreWithInterval(20);
  BeginHere();
  Enter(kRate, "200");
  ExpectBox("Error Setting Poll Rate", "Internal Error", platform::MB_OK);
  screen.Answer(platform::IDOK);
  EXPECT_TRUE(Device()->DeviceSelected());
  EXPECT_EQ(OpenProfile().pollInterval, 20u);
}

// When the fields don't count

TEST_F(DeviceTabTest, WithoutADeviceTheFieldsDoNotCount) {
  BeginWithoutDevice();
  for (const char* text : {"0", "20", "x"}) {
    Enter(kInterval, text);
    Enter(kRate, text);
  }
  EXPECT_FALSE(screen.BoxUp());
  EXPECT_EQ(Device()->PollInterval(), 5u);
}

TEST_F(DeviceTabTest, WhileTheProgramEndsTheFieldsDoNotCount) {
  BeginHere();
  screen.Type(kInterval, "x");
  Post(WM_CLOSE_PROGRAM);
  EXPECT_TRUE(screen.Boxes().empty());
  EXPECT_FALSE(screen.Running());
}

// Defaults

TEST_F(DeviceTabTest, DefaultsGoesBackToTheDefaultInterval) {
  StoreWithInterval(20);
  BeginHere();
  screen.Click(kDefaultRate);
  ExpectInterval(5, "200");
}

TEST_F(DeviceTabTest, DefaultsWithTheDefaultInUseDoesNothing) {
  BeginHere();
  sim.LogCalls(true);
  screen.Click(kDefaultRate);
  EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}), Strings{});
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), Strings{});
}

TEST_F(DeviceTabTest, DefaultsWithoutADeviceDoesNothing) {
  BeginWithoutDevice();
  ASSERT_TRUE(Device()->SetPollInterval(20));
  screen.Click(kDefaultRate);
  EXPECT_EQ(Device()->PollInterval(), 20u);
  EXPECT_EQ(screen.Boxes().size(), 1u);  // the one that no device is selected
}

TEST_F(DeviceTabTest, DefaultsBeyondTheTimersLimitsAreRefusedByTheTimer) {
  sim.SetTimerLimits(10, 500);
  StoreWithInterval(20);
  BeginHere();
  screen.Click(kDefaultRate);
  ExpectBox("Error Setting Poll Rate", "Internal Error", platform::MB_OK);
  screen.Answer(platform::IDOK);
  EXPECT_EQ(Device()->PollInterval(), 20u);
  EXPECT_TRUE(Device()->DeviceSelected());
}

// What is kept for a device

TEST_F(DeviceTabTest, AllValuesOfADeviceAreWrittenAsNumbersInTheirOrder) {
  StoreProfile(kProfile, [this](ProfileFile& made) {
    UsePad(made);
    made.acceleration = -7;
    made.movementSensitivity = 21;
    made.movementDamper = 11;
    made.wheelSensitivity = 31;
    made.wheelDamper = 41;
    made.leftButton = 1;
    made.middleButton = 2;
    made.rightButton = 40;
    made.mouseX = TriggerItem{0, 3, 0};
    made.mouseY = TriggerItem{8, 2, 0};
    made.mouseWheel = TriggerItem{9, 1, 0};
    made.mouseAlwaysActive = true;
  });
  BeginHere();
  sim.LogCalls(true);
  Enter(kInterval, "20");

  const std::uint32_t numbers[] = {20, 0xFFFFFFF9u, 21, 11, 1, 2, 40, 0, 3, 8, 2, 9, 1, 1};
  Strings calls{std::string("RegSetValueExA ") + kSettings + " Last Device"};
  for (std::size_t i = 0; i < std::size(kValues); ++i) {
    EXPECT_EQ(sim.Registry().Number(kPadSettings, kValues[i]), numbers[i]) << kValues[i];
    calls.push_back(std::string("RegSetValueExA ") + kPadSettings + ' ' + kValues[i]);
  }
  EXPECT_EQ(CallsOf(sim, {"RegSetValueExA"}), calls);
  EXPECT_EQ(SettingText("Last Device"), "Pad");
  // Neither of the wheel's two.
  EXPECT_EQ(sim.Registry().ValueNames(kPadSettings).size(), std::size(kValues));
}

TEST_F(DeviceTabTest, ANameWithABackslashIsAPathOfKeys) {
  SimulatedDevice& odd = AddPad("Twin\\Stick");
  StoreProfile(kProfile, [&](ProfileFile& made) { UseDevice(made, odd); });
  BeginHere();
  Enter(kInterval, "20");
  EXPECT_EQ(SettingText("Last Device"), "Twin\\Stick");
  EXPECT_EQ(
      sim.Registry().Number(std::string(kSettings) + "\\Devices\\Twin\\Stick", "Poll Interval"),
      20u);
}

// Loading at start-up, seen without a profile that puts its own values in their place.
class DeviceSettingsTest : public DeviceTabTest {
 protected:
  static constexpr std::uint32_t kAll = 14;  // values

  DeviceSettingsTest() {
    WithoutProfiles();
    PresetText("Last Device", "Pad");
    Preset("Show Auto-Detect Usage", 0);
  }

  // In the order in which they are read.
  struct Value {
    const char* name;
    std::uint32_t number;
  };
  const Value kLoaded[kAll] = {{"Acceleration", 0xFFFFFFF9u},
                               {"Sensitivity", 21},
                               {"Axis Damper", 11},
                               {"Left Mouse Btn", 1},
                               {"Middle Mouse Btn", 31},
                               {"Right Mouse Btn", 33},
                               {"MouseX Type", 0},
                               {"MouseX Bank", 3},
                               {"MouseY Type", 8},
                               {"MouseY Bank", 2},
                               {"Mouse Wheel Type", 9},
                               {"Mouse Wheel Bank", 1},
                               {"Mouse Always Active", 7},
                               {"Poll Interval", 20}};

  // All of them but `without`.
  void Keep(const std::string& without = {}) {
    sim.Registry().RemoveKey(kPadSettings);
    for (const Value& value : kLoaded) {
      if (value.name != without) sim.Registry().PutDword(kPadSettings, value.name, value.number);
    }
  }
};

TEST_F(DeviceSettingsTest, AllValuesAreTakenOver) {
  Keep();
  BeginHere();
  EXPECT_EQ(MouseWords(OpenProfile()),
            "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 2 40, 9 1 36 | active");
  EXPECT_EQ(Device()->PollInterval(), 20u);
  EXPECT_EQ(screen.Text(kInterval), "20");
  EXPECT_EQ(screen.Text(kRate), "50");
  EXPECT_EQ(screen.Text(kMouseX), "Axis_X3");
  EXPECT_EQ(screen.Text(kLeftButton), "B2");
  EXPECT_EQ(screen.Text(kMovementSensitivityFrame), "Movement Sensitivity (21)");
  EXPECT_EQ(Engine().movementFactor, 23);
  EXPECT_FALSE(Settings().showAutoDetectUsage);
  EXPECT_EQ(screen.Chosen(kDeviceList), "Pad");
}

TEST_F(DeviceSettingsTest, FromTheFirstMissingValueOnNothingIsTakenOverThoughAllIsRead) {
  // What is taken over without that value, and what of the input that is cut in two.
  const struct {
    const char* missing;
    const char* mouse;
  } cases[] = {
      {"Acceleration", kUntouchedMouse},
      {"Sensitivity", "-7 15 5 | 0 0, 0 0, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"Axis Damper", "-7 21 5 | 0 0, 0 0, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"Left Mouse Btn", "-7 21 11 | 0 0, 0 0, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"Middle Mouse Btn", "-7 21 11 | 1 2, 0 0, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"Right Mouse Btn",
       "-7 21 11 | 1 2, 31 ffffffff80000000, 0 0 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"MouseX Type", "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 11 0 0, 11 0 0, 11 0 0 | off"},
      {"MouseX Bank", "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 0 0, 11 0 0, 11 0 0 | off"},
      {"MouseY Type", "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 11 0 0, 11 0 0 | off"},
      {"MouseY Bank", "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 0 0, 11 0 0 | off"},
      {"Mouse Wheel Type",
       "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 2 40, 11 0 0 | off"},
      {"Mouse Wheel Bank",
       "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 2 40, 9 0 0 | off"},
      {"Mouse Always Active",
       "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 2 40, 9 1 36 | off"},
      {"Poll Interval",
       "-7 21 11 | 1 2, 31 ffffffff80000000, 33 2 | 0 3 240, 8 2 40, 9 1 36 | active"},
  };
  ASSERT_EQ(std::size(cases), std::size_t{kAll});
  Strings reads;
  for (const Value& value : kLoaded) {
    reads.push_back(std::string("RegQueryValueExA ") + kPadSettings + ' ' + value.name);
  }
  for (const auto& row : cases) {
    Keep(row.missing);
    Preset("Show Auto-Detect Usage", 0);
    sim.LogCalls(true);
    sim.ClearCalls();
    BeginHere();
    EXPECT_EQ(MouseWords(OpenProfile()), row.mouse) << row.missing;
    EXPECT_EQ(Device()->PollInterval(), 5u) << row.missing;
    EXPECT_EQ(CallsOf(sim, {std::string("RegQueryValueExA ") + kPadSettings}), reads)
        << row.missing;
    // The result is false, which that one setting shows; and the tabs are up to date all the same.
    EXPECT_TRUE(Settings().showAutoDetectUsage) << row.missing;
    EXPECT_EQ(screen.Text(kInterval), "5") << row.missing;
    EXPECT_EQ(screen.Text(kNumButtons), "11") << row.missing;
    CloseAll();
  }
}

TEST_F(DeviceSettingsTest, AnInputThatHasNoFieldKeepsItsOffset) {
  const struct {
    std::uint32_t kind;
    std::uint32_t index;
    const char* item;
  } cases[] = {{7, 0, "7 0 28"},
               {7, 4, "7 4 0"},
               {9, 3, "9 3 44"},
               {8, 9, "8 9 68"},
               {10, 2, "10 2 0"},
               {11, 1, "11 1 0"},
               {0x10001, 0x20002, "1 2 212"}};
  for (const auto& row : cases) {
    Keep();
    sim.Registry().PutDword(kPadSettings, "MouseX Type", row.kind);
    sim.Registry().PutDword(kPadSettings, "MouseX Bank", row.index);
    BeginHere();
    EXPECT_EQ(Words(OpenProfile().mouseX), row.item);
    CloseAll();
  }
}

TEST_F(DeviceSettingsTest, AlwaysActiveIsOnForAnyNumberButZero) {
  for (const std::uint32_t number : {0u, 1u, 2u, 0x100u, 0x80000000u}) {
    Keep();
    sim.Registry().PutDword(kPadSettings, "Mouse Always Active", number);
    BeginHere();
    EXPECT_EQ(OpenProfile().mouseAlwaysActive, number != 0) << number;
    EXPECT_EQ(screen.Checked(kMouseAlwaysActive), number != 0) << number;
    CloseAll();
  }
}

TEST_F(DeviceSettingsTest, TheDeviceIsOpenedAnewForAnotherIntervalThatTheTimerTakes) {
  const struct {
    std::uint32_t stored;
    std::uint32_t used;
    Strings timers;
  } cases[] = {
      {5, 5, {"timeSetEvent 5 1"}},
      {20, 20, {"timeSetEvent 5 1", "timeSetEvent 20 1"}},
      {501, 5, {"timeSetEvent 5 1"}},  // refused
      {0, 5, {"timeSetEvent 5 1"}},
  };
  sim.SetTimerLimits(1, 500);
  for (const auto& row : cases) {
    Keep();
    sim.Registry().PutDword(kPadSettings, "Poll Interval", row.stored);
    sim.LogCalls(true);
    sim.ClearCalls();
    BeginHere();
    EXPECT_EQ(Device()->PollInterval(), row.used);
    EXPECT_EQ(CallsOf(sim, {"timeSetEvent"}), row.timers);
    EXPECT_TRUE(Device()->DeviceSelected());
    CloseAll();
  }
}

// Asks at each value that is read whether the lock is held.
class WatchedRegistry final : public ForwardedRegistry {
 public:
  WatchedRegistry(const platform::Platform& groups, std::function<bool()> lockIsHeld)
      : ForwardedRegistry(groups), lockIsHeld(std::move(lockIsHeld)) {}

  // The name, and "held" or "free".
  Strings reads;

  std::uint32_t RegQueryValueExA(platform::HKEY key, const std::string& name, std::uint32_t* type,
                                 void* data, std::uint32_t* size) override {
    reads.push_back(name + (lockIsHeld() ? " held" : " free"));
    return ForwardedRegistry::RegQueryValueExA(key, name, type, data, size);
  }

 private:
  const std::function<bool()> lockIsHeld;
};

TEST_F(DeviceSettingsTest, TheMousesLockIsHeldForAllButThePollInterval) {
  Keep();
  WatchedRegistry watched(sim.Groups(),
                          [this] { return Window() && Device() && Engine().mouseLock.IsTaken(); });
  BeginHere();
  for (const Value& value : kLoaded) {
    const std::string name = value.name;
    const char* state = name == "Poll Interval" ? " free" : " held";
    EXPECT_EQ(std::count(watched.reads.begin(), watched.reads.end(), name + state), 1) << name;
  }
  CloseAll();
}

}  // namespace
}  // namespace kelvaro
