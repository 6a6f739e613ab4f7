#include "device/device_manager.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/device/device_calls.h"
#include "tests/device/manual_machine.h"

namespace kelvaro {
namespace {

using platform::DeviceDescription;
using platform::GUID;
using platform::SimulatedDevice;
using platform::simulation::Simulation;
using test::Calls;
using test::CountDeviceCalls;
using test::DeviceCalls;

constexpr platform::WindowHandle kWindow = 77;

GUID Identity(std::uint32_t first) {
  GUID guid{first, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  return guid;
}

DeviceDescription Pad(const std::string& name, std::uint32_t identity) {
  DeviceDescription description;
  description.name = name;
  description.guid = Identity(identity);
  description.buttons = 11;
  description.axes = 2;
  description.povs = 1;
  return description;
}

std::string ErrorTextOf(const DeviceManager& manager) {
  ByteString text;
  manager.PeekError(&text);
  return text.Text();
}

// What SelectDevice does once the old device is gone, up to and with each of its operations.
const Calls kSelection = {
    "CreateDevice",
    "SetDataFormat",
    "SetCooperativeLevel 77 10",
    "GetCapabilities",
    "EnumObjects",
    "SetProperty 0 -32000 32000",
    "SetProperty 1 -32000 32000",
    "Acquire",
};
// What StartPolling adds, at an interval of 20 ms; the reset of the manual event is that of the
// thread's start.
const Calls kPollingBegins = {
    "ResetEvent 2",       "ResetEvent 1",      "CreateThread notification",
    "timeBeginPeriod 20", "timeSetEvent 20 1",
};
// How a running device goes away.
const Calls kStop = {
    "timeKillEvent 1", "timeEndPeriod 20", "SetEvent 1", "ThreadEnded notification 0",
    "Sleep 100",       "Unacquire",        "Release",
};

Calls operator+(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A machine to which a test attaches devices before it makes the manager.
struct Machine {
  Simulation simulation;
  std::unique_ptr<DeviceManager> manager;

  Machine() { simulation.LogCalls(true); }

  DeviceManager& Make() {
    manager = std::make_unique<DeviceManager>(kWindow);
    manager->SetPollInterval(20);
    simulation.ClearCalls();
    return *manager;
  }
  DeviceManager& MakeWithPad() {
    simulation.AddDevice(Pad("Pad", 1));
    return Make();
  }
  // Its only device is selected, and its threads have begun.
  DeviceManager& MakePolling() {
    MakeWithPad();
    EXPECT_TRUE(manager->SelectDevice(0));
    simulation.RunFor(5);
    simulation.ClearCalls();
    return *manager;
  }
};

struct OnAMachine : testing::Test, Machine {
  // What runs is counted by its polls.
  OnAMachine() { simulation.LetTimersSleep(false); }
};
using DeviceManagerConstruction = OnAMachine;
using DeviceManagerDestruction = OnAMachine;
using DeviceList = OnAMachine;
using DeviceSelection = OnAMachine;
using StopDevice = OnAMachine;

void ExpectNothingSelected(const DeviceManager& manager) {
  EXPECT_FALSE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), -1);
  EXPECT_TRUE(manager.SelectedName().IsEmpty());
  EXPECT_EQ(manager.SelectedGuid(), GUID());
}

// Construction and destruction.

TEST_F(DeviceManagerConstruction, ListsTheDevicesThenReadsTheTimerThenMakesTheEvent) {
  simulation.AddDevice(Pad("Left", 1));
  simulation.AddDevice(Pad("Right", 2));
  DeviceManager manager(kWindow);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"CreateEventA manual", "DirectInput8Create",
                                            "EnumDevices", "timeGetDevCaps", "CreateEventA auto"}));
  EXPECT_TRUE(manager.DirectInputCreated());
  EXPECT_EQ(manager.DeviceCount(), 2);
  EXPECT_STREQ(manager.DeviceName(0).Text(), "Left");
  EXPECT_STREQ(manager.DeviceName(1).Text(), "Right");
  EXPECT_EQ(manager.DeviceGuid(0), Identity(1));
  EXPECT_EQ(manager.DeviceGuid(1), Identity(2));
  EXPECT_EQ(manager.DeviceCaps().dwSize, 44u);
  EXPECT_EQ(manager.stopTimeout, 15000u);
  EXPECT_EQ(manager.PeekError(nullptr), 0);
  EXPECT_EQ(ErrorTextOf(manager), "No Error");
  ExpectNothingSelected(manager);
  EXPECT_FALSE(manager.TakenByAnother());
  EXPECT_TRUE(manager.Answers());
  EXPECT_EQ(manager.LostPolls(), 0u);
}

TEST_F(DeviceManagerConstruction, SucceedsWithoutAnyDevice) {
  DeviceManager& manager = Make();
  EXPECT_TRUE(manager.DirectInputCreated());
  EXPECT_EQ(manager.DeviceCount(), 0);
  EXPECT_FALSE(manager.SelectDeviceByGuid(Identity(1)));
  EXPECT_FALSE(manager.SelectDeviceByGuid(GUID()));
  EXPECT_FALSE(manager.SelectDeviceByName("Pad"));
  EXPECT_FALSE(manager.SelectDeviceByName(""));
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_FALSE(manager.ReselectDevice());
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  ExpectNothingSelected(manager);
}

TEST(DeviceManagerErrors, TellWhyTheDevicesCouldNotBeListed) {
  constexpr char kCreate[] = "DirectInput8Create";
  constexpr char kList[] = "EnumDevices";
  const struct {
    const char* operation;
    std::uint32_t result;
    const char* text;
  } cases[] = {
      {kCreate, 0x8007047Eu, "-2147023746 (0x8007047e) [DIERR_OLDDIRECTINPUTVERSION]"},
      {kCreate, 0x80070481u, "-2147023743 (0x80070481) [DIERR_BETADIRECTINPUTVERSION]"},
      {kCreate, 0x8007000Eu, "-2147024882 (0x8007000e) [DIERR_OUTOFMEMORY]"},
      {kCreate, 0x80070057u, "-2147024809 (0x80070057) [DIERR_INVALIDPARAM]"},
      // Known to the other operation, without a name here.
      {kCreate, 0x80070015u, "-2147024875 (0x80070015)"},
      {kCreate, 0x80004005u, "-2147467259 (0x80004005)"},
      {kCreate, 5u, "5 (0x00000005)"},
      {kList, 0x80070015u, "-2147024875 (0x80070015) [DIERR_NOTINITIALIZED]"},
      {kList, 0x80070057u, "-2147024809 (0x80070057) [DIERR_INVALIDPARAM]"},
      {kList, 0x8007000Eu, "-2147024882 (0x8007000e)"},
      {kList, 0x80004005u, "-2147467259 (0x80004005)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.operation + std::string(" ") + c.text);
    Machine machine;
    machine.simulation.FailNext(c.operation, platform::ResultCode(c.result));
    DeviceManager manager(kWindow);
    EXPECT_FALSE(manager.DirectInputCreated());
    EXPECT_EQ(manager.PeekError(nullptr), c.operation == kCreate ? 1 : 2);
    EXPECT_EQ(ErrorTextOf(manager),
              c.operation + std::string("() failed with return code: ") + c.text);
    EXPECT_EQ(manager.DeviceCount(), 0);
  }
}

TEST_F(DeviceManagerConstruction, GoesOnToTimerAndEventWithoutDirectInput) {
  simulation.FailNext("DirectInput8Create");
  DeviceManager manager(kWindow);
  EXPECT_EQ(DeviceCalls(simulation), (Calls{"CreateEventA manual", "DirectInput8Create",
                                            "Sleep 100", "timeGetDevCaps", "CreateEventA auto"}));
  simulation.ClearCalls();
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_TRUE(DeviceCalls(simulation).empty());
}

TEST_F(DeviceManagerConstruction, ReleasesDirectInputWhenTheDevicesCannotBeListed) {
  simulation.FailNext("EnumDevices");
  DeviceManager manager(kWindow);
  EXPECT_EQ(DeviceCalls(simulation),
            (Calls{"CreateEventA manual", "DirectInput8Create", "EnumDevices", "Sleep 100",
                   "Release DirectInput", "timeGetDevCaps", "CreateEventA auto"}));
  simulation.ClearCalls();
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_TRUE(DeviceCalls(simulation).empty());
}

TEST_F(DeviceManagerDestruction, StopsTheDeviceAndThenReleasesDirectInput) {
  MakePolling();
  manager.reset();
  EXPECT_EQ(DeviceCalls(simulation), kStop + Calls{"Release DirectInput"});
  EXPECT_EQ(simulation.LivingThreads(), 0u);
}

TEST_F(DeviceManagerDestruction, ClosesTheEventOfChangesIfThereIsOne) {
  Make();
  manager.reset();
  EXPECT_EQ(CountDeviceCalls(simulation, "CloseHandle 2"), 1);

  simulation.FailNext("CreateEventA auto");
  Make();
  manager.reset();
  EXPECT_EQ(CountDeviceCalls(simulation, "CloseHandle -1"), 0);
}

TEST_F(DeviceManagerDestruction, ReleasesNothingTwice) {
  simulation.FailNext("EnumDevices");
  Make();
  manager.reset();
  EXPECT_EQ(DeviceCalls(simulation), Calls{"Sleep 100"});
}

// The list.

TEST_F(DeviceList, HasNeitherNameNorIdentityOutsideOfIt) {
  DeviceManager& manager = MakeWithPad();
  for (const std::int32_t index : {-1, 1, 2, -2147483647 - 1, 2147483647}) {
    EXPECT_TRUE(manager.DeviceName(index).IsEmpty()) << index;
    EXPECT_EQ(manager.DeviceGuid(index), GUID()) << index;
  }
}

TEST_F(DeviceList, IsMadeAnewByEnumerateDevices) {
  SimulatedDevice& left = simulation.AddDevice(Pad("Left", 1));
  DeviceManager& manager = Make();
  left.Unplug();
  simulation.AddDevice(Pad("Right", 2));
  EXPECT_STREQ(manager.DeviceName(0).Text(), "Left");
  EXPECT_TRUE(manager.EnumerateDevices());
  ASSERT_EQ(manager.DeviceCount(), 1);
  EXPECT_STREQ(manager.DeviceName(0).Text(), "Right");
  EXPECT_EQ(manager.DeviceGuid(0), Identity(2));
}

TEST_F(DeviceList, AFailedEnumerationTellsWhyAndKeepsDirectInput) {
  DeviceManager& manager = MakeWithPad();
  simulation.FailNext("EnumDevices", platform::DIERR_NOTINITIALIZED);
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_EQ(manager.PeekError(nullptr), 2);
  EXPECT_EQ(ErrorTextOf(manager),
            "EnumDevices() failed with return code: -2147024875 (0x80070015)"
            " [DIERR_NOTINITIALIZED]");
  EXPECT_TRUE(manager.DirectInputCreated());
  EXPECT_TRUE(manager.EnumerateDevices());
  EXPECT_EQ(manager.DeviceCount(), 1);
}

TEST_F(DeviceList, ReenumerationLeavesTheSelectionAsItWas) {
  SimulatedDevice& left = simulation.AddDevice(Pad("Left", 1));
  simulation.AddDevice(Pad("Right", 2));
  DeviceManager& manager = Make();
  ASSERT_TRUE(manager.SelectDevice(1));
  left.Unplug();
  simulation.ClearCalls();
  ASSERT_TRUE(manager.EnumerateDevices());
  EXPECT_EQ(DeviceCalls(simulation), Calls{"EnumDevices"});
  ASSERT_EQ(manager.DeviceCount(), 1);
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 1);
  EXPECT_STREQ(manager.SelectedName().Text(), "Right");
  // The place is past the end of the new list.
  EXPECT_EQ(manager.SelectedGuid(), GUID());
  EXPECT_FALSE(manager.ReselectDevice());
  simulation.ClearCalls();
  simulation.RunFor(60);
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 3);
}

// Selection.

TEST_F(DeviceSelection, TakesItsNineStepsInOrder) {
  DeviceManager& manager = MakeWithPad();
  EXPECT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(DeviceCalls(simulation), Calls{"Sleep 100"} + kSelection + kPollingBegins);
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 0);
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
  EXPECT_EQ(manager.SelectedGuid(), Identity(1));
  EXPECT_EQ(manager.DeviceCaps().dwSize, 44u);
  EXPECT_EQ(manager.DeviceCaps().dwAxes, 2u);
  EXPECT_EQ(manager.DeviceCaps().dwButtons, 11u);
  EXPECT_EQ(manager.DeviceCaps().dwPOVs, 1u);
}

TEST_F(DeviceSelection, StopsTheOldDeviceFirst) {
  DeviceManager& manager = MakePolling();
  EXPECT_TRUE(manager.ReselectDevice());
  EXPECT_EQ(DeviceCalls(simulation), kStop + kSelection + kPollingBegins);
  EXPECT_EQ(simulation.LivingThreads(), 1u);
}

TEST_F(DeviceSelection, AnIndexOutsideTheListChangesNothing) {
  DeviceManager& manager = MakeWithPad();
  ASSERT_TRUE(manager.SelectDevice(0));
  simulation.ClearCalls();
  for (const std::int32_t index : {1, 2, -1, 2147483647}) {
    EXPECT_FALSE(manager.SelectDevice(index)) << index;
  }
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 0);
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
  simulation.RunFor(100);
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 5);
}

TEST_F(DeviceSelection, AFailedCreateDeviceLeavesNoDeviceRunning) {
  DeviceManager& manager = MakePolling();
  simulation.FailNext("CreateDevice", platform::DIERR_DEVICENOTREG);
  EXPECT_FALSE(manager.SelectDevice(0));
  // Stopped once, and there was nothing to stop again.
  EXPECT_EQ(DeviceCalls(simulation), kStop + Calls{"CreateDevice"});
  ExpectNothingSelected(manager);
  EXPECT_EQ(simulation.LivingThreads(), 0u);
  simulation.ClearCalls();
  simulation.RunFor(200);
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  EXPECT_TRUE(manager.SelectDevice(0));
}

// A failed CreateDevice leaves something behind, which counts what is asked of it.
struct NobodysPad final : test::ManualMachine {
  platform::HRESULT CreateDevice(const GUID& guid, platform::DirectInputDevice** device) override {
    OnePad::CreateDevice(guid, device);
    return platform::DIERR_DEVICENOTREG;
  }
  platform::HRESULT Unacquire() override { return Count(); }
  void Release() override { Count(); }
  platform::HRESULT Count() {
    ++asked;
    return platform::DI_OK;
  }
  int asked = 0;
};

TEST(DeviceSelectionFailures, WhatAFailedCreateDeviceLeavesBehindIsNoDevice) {
  NobodysPad nobodys;
  DeviceManager manager(kWindow);
  EXPECT_FALSE(manager.SelectDevice(0));
  manager.StopDevice();
  EXPECT_EQ(nobodys.asked, 0);
}

TEST(DeviceExclusive, OnlyTheDevicesThatAreWantedAloneAreExclusive) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  machine.simulation.AddDevice(Pad("Stick", 2));
  DeviceManager& manager = machine.Make();
  manager.SetExclusive([](const ByteString& name) { return name.Equals("Stick"); });
  const auto levelOf = [&](std::int32_t index) {
    machine.simulation.ClearCalls();
    EXPECT_TRUE(manager.SelectDevice(index));
    for (const std::string& call : DeviceCalls(machine.simulation))
      if (call.rfind("SetCooperativeLevel", 0) == 0) return call;
    return std::string();
  };
  EXPECT_EQ(levelOf(1), "SetCooperativeLevel 77 9");
  EXPECT_EQ(levelOf(0), "SetCooperativeLevel 77 10");
}

TEST(DeviceExclusive, WhatAnotherProgramHasIsToldUntilTheNextSelection) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  machine.simulation.FailNext("Acquire");
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_FALSE(manager.TakenByAnother());
  machine.simulation.FailNext("Acquire", platform::DIERR_OTHERAPPHASPRIO);
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_TRUE(manager.TakenByAnother());
  EXPECT_FALSE(manager.SelectDeviceByName("No such pad"));
  EXPECT_TRUE(manager.TakenByAnother());
  EXPECT_TRUE(manager.SelectDevice(0));
  EXPECT_FALSE(manager.TakenByAnother());
  machine.simulation.FailNext("Acquire", platform::DIERR_OTHERAPPHASPRIO);
  EXPECT_FALSE(manager.SelectDevice(0));
  manager.StopDevice();
  EXPECT_FALSE(manager.TakenByAnother());
}

TEST(DeviceSelectionFailures, AFailureOfAnyLaterStepGivesTheDeviceUpAgain) {
  struct Case {
    const char* operation;
    std::size_t done;  // how much of kSelection was asked for, the failing operation included
  };
  const Case cases[] = {
      {"SetDataFormat", 2}, {"SetCooperativeLevel", 3}, {"GetCapabilities", 4}, {"EnumObjects", 5},
      {"Acquire", 8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.operation);
    Machine machine;
    machine.simulation.AddDevice(Pad("Pad", 1));
    DeviceManager& manager = machine.Make();
    machine.simulation.FailNext(c.operation);
    EXPECT_FALSE(manager.SelectDevice(0));
    const Calls asked(kSelection.begin(), kSelection.begin() + static_cast<std::ptrdiff_t>(c.done));
    EXPECT_EQ(DeviceCalls(machine.simulation),
              (Calls{"Sleep 100"} + asked + Calls{"Sleep 100", "Unacquire", "Release"}));
    ExpectNothingSelected(manager);
    EXPECT_EQ(manager.PeekError(nullptr), 0);
    EXPECT_EQ(ErrorTextOf(manager), "No Error");
    EXPECT_EQ(machine.simulation.LivingThreads(), 0u);
    machine.simulation.ClearCalls();
    machine.simulation.RunFor(100);
    EXPECT_TRUE(DeviceCalls(machine.simulation).empty());

    EXPECT_TRUE(manager.SelectDevice(0));
    EXPECT_EQ(DeviceCalls(machine.simulation), Calls{"Sleep 100"} + kSelection + kPollingBegins);
  }
}

TEST_F(DeviceSelection, AnAxisThatRefusesItsRangeIsNoFailure) {
  DeviceManager& manager = MakeWithPad();
  simulation.FailAlways("SetProperty");
  EXPECT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(DeviceCalls(simulation), Calls{"Sleep 100"} + kSelection + kPollingBegins);
}

// Of one axis, which knows what was set of it last.
struct OneAxis final : test::ManualMachine {
  static constexpr std::uint32_t kAxis = 0x102;
  platform::HRESULT EnumObjects(const std::function<bool(std::uint32_t)>& visit,
                                std::uint32_t) override {
    visit(kAxis);
    return platform::DI_OK;
  }
  platform::HRESULT SetProperty(std::uint32_t, const platform::DIPROPRANGE& wanted) override {
    range = wanted;
    return platform::DI_OK;
  }
  platform::DIPROPRANGE range;
};

TEST(DeviceAxes, HaveTheirRangeSetEachByItsIdentity) {
  OneAxis pad;
  DeviceManager manager(kWindow);
  ASSERT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(pad.range.diph.dwHow, platform::DIPH_BYID);
  EXPECT_EQ(pad.range.diph.dwObj, OneAxis::kAxis);
  EXPECT_EQ(pad.range.lMin, -32000);
  EXPECT_EQ(pad.range.lMax, 32000);
}

TEST_F(DeviceSelection, AcquireWithoutEffectIsSuccessAndAnyOtherResultFailure) {
  DeviceManager& manager = MakeWithPad();
  simulation.FailNext("Acquire", platform::DI_NOEFFECT);
  EXPECT_TRUE(manager.SelectDevice(0));
  simulation.FailNext("Acquire", 2);
  EXPECT_FALSE(manager.SelectDevice(0));
}

TEST_F(DeviceSelection, ReselectNeedsASelection) {
  DeviceManager& manager = MakeWithPad();
  EXPECT_FALSE(manager.ReselectDevice());
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  ASSERT_TRUE(manager.SelectDevice(0));
  manager.StopDevice();
  EXPECT_FALSE(manager.ReselectDevice());
}

TEST_F(DeviceSelection, ByGuidTakesTheFirstThatIsEqualInAllParts) {
  simulation.AddDevice(Pad("First", 1));
  simulation.AddDevice(Pad("Second", 2));
  simulation.AddDevice(Pad("Third", 2));
  DeviceManager& manager = Make();
  EXPECT_TRUE(manager.SelectDeviceByGuid(Identity(2)));
  EXPECT_EQ(manager.SelectedIndex(), 1);
  EXPECT_STREQ(manager.SelectedName().Text(), "Second");

  std::vector<GUID> strangers;
  strangers.push_back(Identity(3));
  GUID other = Identity(1);
  other.Data2 ^= 1;
  strangers.push_back(other);
  other = Identity(1);
  other.Data3 ^= 0x8000;
  strangers.push_back(other);
  for (std::uint8_t& part : other.Data4) {
    other = Identity(1);
    part ^= 1;
    strangers.push_back(other);
  }
  simulation.ClearCalls();
  for (const GUID& stranger : strangers) EXPECT_FALSE(manager.SelectDeviceByGuid(stranger));
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  EXPECT_EQ(manager.SelectedIndex(), 1);
}

TEST_F(DeviceSelection, ByNameTakesTheFirstThatIsEqualByteForByte) {
  simulation.AddDevice(Pad("Game Pad", 1));
  simulation.AddDevice(Pad("Pad", 2));
  simulation.AddDevice(Pad("Pad", 3));
  DeviceManager& manager = Make();
  EXPECT_TRUE(manager.SelectDeviceByName("Pad"));
  EXPECT_EQ(manager.SelectedIndex(), 1);
  EXPECT_EQ(manager.SelectedGuid(), Identity(2));

  simulation.ClearCalls();
  for (const char* stranger : {"pad", "PAD", "Pa", "Pad ", " Pad", "Game", ""}) {
    EXPECT_FALSE(manager.SelectDeviceByName(stranger)) << '"' << stranger << '"';
  }
  ByteString longer("Pad");
  longer.Append("\0x", 2);
  EXPECT_FALSE(manager.SelectDeviceByName(longer));
  EXPECT_TRUE(DeviceCalls(simulation).empty());
  EXPECT_EQ(manager.SelectedIndex(), 1);
}

TEST_F(DeviceSelection, ByTheNameOfTheSelectedDeviceSelectsItAgain) {
  DeviceManager& manager = MakeWithPad();
  ASSERT_TRUE(manager.SelectDevice(0));
  EXPECT_TRUE(manager.SelectDeviceByName(manager.SelectedName()));
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
}

TEST_F(DeviceSelection, FailsForADeviceThatIsGone) {
  SimulatedDevice& pad = simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = Make();
  pad.Unplug();
  EXPECT_FALSE(manager.SelectDevice(0));
  ExpectNothingSelected(manager);
  EXPECT_EQ(manager.PeekError(nullptr), 0);
  pad.PlugIn();
  EXPECT_TRUE(manager.SelectDevice(0));
}

// Stopping.

TEST_F(StopDevice, TakesItsStepsInOrder) {
  DeviceManager& manager = MakePolling();
  const std::uint64_t before = simulation.Now();
  manager.StopDevice();
  EXPECT_EQ(DeviceCalls(simulation), kStop);
  EXPECT_EQ(simulation.Now() - before, 100u);
  ExpectNothingSelected(manager);
  simulation.ClearCalls();
  manager.StopDevice();
  EXPECT_EQ(DeviceCalls(simulation), Calls{"Sleep 100"}) << "it has stopped already";
}

TEST_F(StopDevice, WaitsItsHundredMillisecondsEvenWhenNothingRuns) {
  DeviceManager& manager = Make();
  for (int i = 0; i < 2; ++i) {
    simulation.ClearCalls();
    const std::uint64_t before = simulation.Now();
    manager.StopDevice();
    EXPECT_EQ(DeviceCalls(simulation), Calls{"Sleep 100"});
    EXPECT_EQ(simulation.Now() - before, 100u);
  }
}

TEST_F(StopDevice, NothingIsPolledAfterIt) {
  DeviceManager& manager = MakeWithPad();
  ASSERT_TRUE(manager.SelectDevice(0));
  simulation.RunFor(100);
  EXPECT_EQ(CountDeviceCalls(simulation, "Poll"), 5);
  manager.StopDevice();
  simulation.ClearCalls();
  simulation.RunFor(1000);
  EXPECT_TRUE(DeviceCalls(simulation).empty());
}

}  // namespace
}  // namespace kelvaro
