#include "device/device_manager.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/device/one_pad.h"
#include "tests/device/watched_machine.h"

namespace kelvaro {
namespace {

using platform::DeviceDescription;
using platform::GUID;
using platform::SimulatedDevice;
using platform::simulation::Simulation;
using Calls = std::vector<std::string>;

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
    "CreateDevice 1",
    "SetDataFormat",
    "SetCooperativeLevel 77 10",
    "GetCapabilities 44",
    "EnumObjects 3",
    "SetProperty 4 how 2 axis 0 -32000 to 32000",
    "SetProperty 4 how 2 axis 1 -32000 to 32000",
    "Acquire",
};
// What StartPolling adds, at an interval of 20 ms; the reset of the manual event is that of the
// thread's start.
const Calls kPollingBegins = {
    "ResetEvent auto",    "ResetEvent manual",   "CreateThread notification",
    "timeBeginPeriod 20", "timeSetEvent 20 1 1",
};
// How a running device goes away.
const Calls kStop = {
    "timeKillEvent", "timeEndPeriod 20", "SetEvent manual", "notification ended",
    "Sleep 100",     "Unacquire",        "Release",
};

Calls operator+(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// A machine to which a test attaches devices before it makes the manager.
struct Machine {
  Simulation simulation;
  test::WatchedMachine watched{simulation};
  std::unique_ptr<DeviceManager> manager;

  DeviceManager& Make() {
    manager = std::make_unique<DeviceManager>(kWindow);
    manager->SetPollInterval(20);
    watched.calls.clear();
    return *manager;
  }
};

void ExpectNothingSelected(const DeviceManager& manager) {
  EXPECT_FALSE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), -1);
  EXPECT_TRUE(manager.SelectedName().IsEmpty());
  EXPECT_EQ(manager.SelectedGuid(), GUID());
}

// Construction and destruction.

TEST(DeviceManagerConstruction, ListsTheDevicesThenReadsTheTimerThenMakesTheEvent) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Left", 1));
  machine.simulation.AddDevice(Pad("Right", 2));
  DeviceManager manager(kWindow);
  EXPECT_EQ(machine.watched.calls,
            (Calls{"CreateEventA manual", "DirectInput8Create 2048", "EnumDevices 4 1",
                   "timeGetDevCaps", "CreateEventA auto"}));
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
}

TEST(DeviceManagerConstruction, SucceedsWithoutAnyDevice) {
  Machine machine;
  DeviceManager& manager = machine.Make();
  EXPECT_TRUE(manager.DirectInputCreated());
  EXPECT_EQ(manager.DeviceCount(), 0);
  EXPECT_FALSE(manager.SelectDeviceByGuid(Identity(1)));
  EXPECT_FALSE(manager.SelectDeviceByGuid(GUID()));
  EXPECT_FALSE(manager.SelectDeviceByName("Pad"));
  EXPECT_FALSE(manager.SelectDeviceByName(""));
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_FALSE(manager.ReselectDevice());
  EXPECT_TRUE(machine.watched.calls.empty());
  ExpectNothingSelected(manager);
}

TEST(DeviceManagerConstruction, TellsWhyDirectInputCouldNotBeCreated) {
  struct Case {
    std::uint32_t result;
    const char* text;
  };
  const Case cases[] = {
      {0x8007047Eu,
       "DirectInput8Create() failed with return code: -2147023746 (0x8007047e)"
       " [DIERR_OLDDIRECTINPUTVERSION]"},
      {0x80070481u,
       "DirectInput8Create() failed with return code: -2147023743 (0x80070481)"
       " [DIERR_BETADIRECTINPUTVERSION]"},
      {0x8007000Eu,
       "DirectInput8Create() failed with return code: -2147024882 (0x8007000e)"
       " [DIERR_OUTOFMEMORY]"},
      {0x80070057u,
       "DirectInput8Create() failed with return code: -2147024809 (0x80070057)"
       " [DIERR_INVALIDPARAM]"},
      // Known elsewhere, without a name here.
      {0x80070015u, "DirectInput8Create() failed with return code: -2147024875 (0x80070015)"},
      {0x80004005u, "DirectInput8Create() failed with return code: -2147467259 (0x80004005)"},
      {5u, "DirectInput8Create() failed with return code: 5 (0x00000005)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    machine.simulation.AddDevice(Pad("Pad", 1));
    machine.simulation.FailNext("DirectInput8Create", platform::ResultCode(c.result));
    DeviceManager manager(kWindow);
    EXPECT_FALSE(manager.DirectInputCreated());
    EXPECT_EQ(manager.PeekError(nullptr), 1);
    EXPECT_EQ(ErrorTextOf(manager), c.text);
    EXPECT_EQ(manager.DeviceCount(), 0);
  }
}

TEST(DeviceManagerConstruction, GoesOnToTimerAndEventWithoutDirectInput) {
  Machine machine;
  machine.simulation.FailNext("DirectInput8Create");
  DeviceManager manager(kWindow);
  EXPECT_EQ(machine.watched.calls, (Calls{"CreateEventA manual", "DirectInput8Create 2048",
                                          "Sleep 100", "timeGetDevCaps", "CreateEventA auto"}));
  machine.watched.calls.clear();
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_TRUE(machine.watched.calls.empty());
}

TEST(DeviceManagerConstruction, TellsWhyTheDevicesCouldNotBeListed) {
  struct Case {
    std::uint32_t result;
    const char* text;
  };
  const Case cases[] = {
      {0x80070015u,
       "EnumDevices() failed with return code: -2147024875 (0x80070015) [DIERR_NOTINITIALIZED]"},
      {0x80070057u,
       "EnumDevices() failed with return code: -2147024809 (0x80070057) [DIERR_INVALIDPARAM]"},
      // Known elsewhere, without a name here.
      {0x8007000Eu, "EnumDevices() failed with return code: -2147024882 (0x8007000e)"},
      {0x80004005u, "EnumDevices() failed with return code: -2147467259 (0x80004005)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Machine machine;
    machine.simulation.FailNext("EnumDevices", platform::ResultCode(c.result));
    DeviceManager manager(kWindow);
    EXPECT_FALSE(manager.DirectInputCreated());
    EXPECT_EQ(manager.PeekError(nullptr), 2);
    EXPECT_EQ(ErrorTextOf(manager), c.text);
  }
}

TEST(DeviceManagerConstruction, ReleasesDirectInputWhenTheDevicesCannotBeListed) {
  Machine machine;
  machine.simulation.FailNext("EnumDevices");
  DeviceManager manager(kWindow);
  EXPECT_EQ(machine.watched.calls,
            (Calls{"CreateEventA manual", "DirectInput8Create 2048", "EnumDevices 4 1", "Sleep 100",
                   "DirectInput Release", "timeGetDevCaps", "CreateEventA auto"}));
  machine.watched.calls.clear();
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_TRUE(machine.watched.calls.empty());
}

TEST(DeviceManagerDestruction, StopsTheDeviceAndThenReleasesDirectInput) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  ASSERT_TRUE(machine.Make().SelectDevice(0));
  machine.simulation.RunFor(5);
  machine.watched.calls.clear();
  machine.manager.reset();
  EXPECT_EQ(machine.watched.calls, kStop + Calls{"DirectInput Release"});
  EXPECT_EQ(machine.simulation.LivingThreads(), 0u);
}

TEST(DeviceManagerDestruction, ReleasesNothingTwice) {
  Machine machine;
  machine.simulation.FailNext("EnumDevices");
  machine.Make();
  machine.manager.reset();
  EXPECT_EQ(machine.watched.calls, Calls{"Sleep 100"});
}

// The list.

TEST(DeviceList, HasNeitherNameNorIdentityOutsideOfIt) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  for (const std::int32_t index : {-1, 1, 2, -2147483647 - 1, 2147483647}) {
    EXPECT_TRUE(manager.DeviceName(index).IsEmpty()) << index;
    EXPECT_EQ(manager.DeviceGuid(index), GUID()) << index;
  }
}

TEST(DeviceList, IsMadeAnewByEnumerateDevices) {
  Machine machine;
  SimulatedDevice& left = machine.simulation.AddDevice(Pad("Left", 1));
  DeviceManager& manager = machine.Make();
  left.Unplug();
  machine.simulation.AddDevice(Pad("Right", 2));
  EXPECT_STREQ(manager.DeviceName(0).Text(), "Left");
  EXPECT_TRUE(manager.EnumerateDevices());
  ASSERT_EQ(manager.DeviceCount(), 1);
  EXPECT_STREQ(manager.DeviceName(0).Text(), "Right");
  EXPECT_EQ(manager.DeviceGuid(0), Identity(2));
}

TEST(DeviceList, AFailedEnumerationTellsWhyAndKeepsDirectInput) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  machine.simulation.FailNext("EnumDevices", platform::DIERR_NOTINITIALIZED);
  EXPECT_FALSE(manager.EnumerateDevices());
  EXPECT_EQ(manager.PeekError(nullptr), 2);
  EXPECT_EQ(ErrorTextOf(manager),
            "EnumDevices() failed with return code: -2147024875 (0x80070015)"
            " [DIERR_NOTINITIALIZED]");
  EXPECT_TRUE(manager.DirectInputCreated());
  EXPECT_TRUE(manager.EnumerateDevices());
  EXPECT_EQ(manager.DeviceCount(), 1);
}

TEST(DeviceList, ReenumerationLeavesTheSelectionAsItWas) {
  Machine machine;
  SimulatedDevice& left = machine.simulation.AddDevice(Pad("Left", 1));
  machine.simulation.AddDevice(Pad("Right", 2));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(1));
  left.Unplug();
  machine.watched.calls.clear();
  ASSERT_TRUE(manager.EnumerateDevices());
  EXPECT_EQ(machine.watched.calls, Calls{"EnumDevices 4 1"});
  ASSERT_EQ(manager.DeviceCount(), 1);
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 1);
  EXPECT_STREQ(manager.SelectedName().Text(), "Right");
  // The place is past the end of the new list.
  EXPECT_EQ(manager.SelectedGuid(), GUID());
  EXPECT_FALSE(manager.ReselectDevice());
  machine.watched.calls.clear();
  machine.simulation.RunFor(60);
  EXPECT_EQ(machine.watched.Count("Poll"), 3);
}

// Selection.

TEST(DeviceSelection, TakesItsNineStepsInOrder) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  EXPECT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(machine.watched.calls, Calls{"Sleep 100"} + kSelection + kPollingBegins);
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 0);
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
  EXPECT_EQ(manager.SelectedGuid(), Identity(1));
  EXPECT_EQ(manager.DeviceCaps().dwSize, 44u);
  EXPECT_EQ(manager.DeviceCaps().dwAxes, 2u);
  EXPECT_EQ(manager.DeviceCaps().dwButtons, 11u);
  EXPECT_EQ(manager.DeviceCaps().dwPOVs, 1u);
}

TEST(DeviceSelection, StopsTheOldDeviceFirst) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  machine.simulation.RunFor(5);
  machine.watched.calls.clear();
  EXPECT_TRUE(manager.ReselectDevice());
  EXPECT_EQ(machine.watched.calls, kStop + kSelection + kPollingBegins);
  EXPECT_EQ(machine.simulation.LivingThreads(), 1u);
}

TEST(DeviceSelection, AnIndexOutsideTheListChangesNothing) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  machine.watched.calls.clear();
  for (const std::int32_t index : {1, 2, -1, 2147483647}) {
    EXPECT_FALSE(manager.SelectDevice(index)) << index;
  }
  EXPECT_TRUE(machine.watched.calls.empty());
  EXPECT_TRUE(manager.DeviceSelected());
  EXPECT_EQ(manager.SelectedIndex(), 0);
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
  machine.simulation.RunFor(100);
  EXPECT_EQ(machine.watched.Count("Poll"), 5);
}

TEST(DeviceSelection, AFailedCreateDeviceLeavesNoDeviceRunning) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  machine.simulation.RunFor(5);
  machine.watched.calls.clear();
  machine.simulation.FailNext("CreateDevice", platform::DIERR_DEVICENOTREG);
  EXPECT_FALSE(manager.SelectDevice(0));
  // Stopped once, and there was nothing to stop again.
  EXPECT_EQ(machine.watched.calls, kStop + Calls{"CreateDevice 1"});
  ExpectNothingSelected(manager);
  EXPECT_EQ(machine.simulation.LivingThreads(), 0u);
  machine.watched.calls.clear();
  machine.simulation.RunFor(200);
  EXPECT_TRUE(machine.watched.calls.empty());
  EXPECT_TRUE(manager.SelectDevice(0));
}

// Counts what is asked of it.
struct NobodysPad final : test::OnePad {
  platform::HRESULT Unacquire() override { return Count(); }
  platform::HRESULT Poll() override { return Count(); }
  platform::HRESULT GetDeviceState(std::uint32_t, platform::DIJOYSTATE2*) override {
    return Count();
  }
  void Release() override { Count(); }
  platform::HRESULT Count() {
    ++calls;
    return platform::DI_OK;
  }
  int calls = 0;
};

TEST(DeviceSelection, WhatAFailedCreateDeviceLeavesBehindIsNoDevice) {
  NobodysPad nobodys;
  {
    Machine machine;
    machine.simulation.AddDevice(Pad("Pad", 1));
    machine.watched.leftByAFailure = &nobodys;
    DeviceManager& manager = machine.Make();
    machine.simulation.FailNext("CreateDevice", platform::DIERR_DEVICENOTREG);
    EXPECT_FALSE(manager.SelectDevice(0));
    machine.simulation.RunFor(200);
    manager.StopDevice();
    EXPECT_EQ(nobodys.calls, 0);
    EXPECT_TRUE(manager.SelectDevice(0));
  }
  EXPECT_EQ(nobodys.calls, 0);
}

TEST(DeviceSelection, AFailureOfAnyLaterStepGivesTheDeviceUpAgain) {
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
    EXPECT_EQ(machine.watched.calls,
              (Calls{"Sleep 100"} + asked + Calls{"Sleep 100", "Unacquire", "Release"}));
    ExpectNothingSelected(manager);
    EXPECT_EQ(manager.PeekError(nullptr), 0);
    EXPECT_EQ(ErrorTextOf(manager), "No Error");
    EXPECT_EQ(machine.simulation.LivingThreads(), 0u);
    machine.watched.calls.clear();
    machine.simulation.RunFor(100);
    EXPECT_TRUE(machine.watched.calls.empty());

    EXPECT_TRUE(manager.SelectDevice(0));
    EXPECT_EQ(machine.watched.calls, Calls{"Sleep 100"} + kSelection + kPollingBegins);
  }
}

TEST(DeviceSelection, AnAxisThatRefusesItsRangeIsNoFailure) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  machine.simulation.FailAlways("SetProperty");
  EXPECT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(machine.watched.calls, Calls{"Sleep 100"} + kSelection + kPollingBegins);
}

TEST(DeviceSelection, AcquireWithoutEffectIsSuccess) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  machine.simulation.FailNext("Acquire", platform::DI_NOEFFECT);
  EXPECT_TRUE(manager.SelectDevice(0));
}

TEST(DeviceSelection, AnyOtherResultOfAcquireIsFailure) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  machine.simulation.FailNext("Acquire", 2);
  EXPECT_FALSE(manager.SelectDevice(0));
}

TEST(DeviceSelection, ReselectNeedsASelection) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  EXPECT_FALSE(manager.ReselectDevice());
  EXPECT_TRUE(machine.watched.calls.empty());
  ASSERT_TRUE(manager.SelectDevice(0));
  manager.StopDevice();
  EXPECT_FALSE(manager.ReselectDevice());
}

TEST(DeviceSelection, ByGuidTakesTheFirstThatIsEqualInAllParts) {
  Machine machine;
  machine.simulation.AddDevice(Pad("First", 1));
  machine.simulation.AddDevice(Pad("Second", 2));
  machine.simulation.AddDevice(Pad("Third", 2));
  DeviceManager& manager = machine.Make();
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
  machine.watched.calls.clear();
  for (const GUID& stranger : strangers) EXPECT_FALSE(manager.SelectDeviceByGuid(stranger));
  EXPECT_TRUE(machine.watched.calls.empty());
  EXPECT_EQ(manager.SelectedIndex(), 1);
}

TEST(DeviceSelection, ByNameTakesTheFirstThatIsEqualByteForByte) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Game Pad", 1));
  machine.simulation.AddDevice(Pad("Pad", 2));
  machine.simulation.AddDevice(Pad("Pad", 3));
  DeviceManager& manager = machine.Make();
  EXPECT_TRUE(manager.SelectDeviceByName("Pad"));
  EXPECT_EQ(manager.SelectedIndex(), 1);
  EXPECT_EQ(manager.SelectedGuid(), Identity(2));

  machine.watched.calls.clear();
  for (const char* stranger : {"pad", "PAD", "Pa", "Pad ", " Pad", "Game", ""}) {
    EXPECT_FALSE(manager.SelectDeviceByName(stranger)) << '"' << stranger << '"';
  }
  ByteString longer("Pad");
  longer.Append("\0x", 2);
  EXPECT_FALSE(manager.SelectDeviceByName(longer));
  EXPECT_TRUE(machine.watched.calls.empty());
  EXPECT_EQ(manager.SelectedIndex(), 1);
}

TEST(DeviceSelection, ByTheNameOfTheSelectedDeviceSelectsItAgain) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  EXPECT_TRUE(manager.SelectDeviceByName(manager.SelectedName()));
  EXPECT_STREQ(manager.SelectedName().Text(), "Pad");
}

TEST(DeviceSelection, FailsForADeviceThatIsGone) {
  Machine machine;
  SimulatedDevice& pad = machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  pad.Unplug();
  EXPECT_FALSE(manager.SelectDevice(0));
  ExpectNothingSelected(manager);
  EXPECT_EQ(manager.PeekError(nullptr), 0);
  pad.PlugIn();
  EXPECT_TRUE(manager.SelectDevice(0));
}

// Stopping.

TEST(StopDevice, TakesItsStepsInOrder) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  machine.simulation.RunFor(5);
  machine.watched.calls.clear();
  const std::uint64_t before = machine.simulation.Now();
  manager.StopDevice();
  EXPECT_EQ(machine.watched.calls, kStop);
  EXPECT_EQ(machine.simulation.Now() - before, 100u);
  ExpectNothingSelected(manager);
}

TEST(StopDevice, WaitsItsHundredMillisecondsEvenWhenNothingRuns) {
  Machine machine;
  DeviceManager& manager = machine.Make();
  for (int i = 0; i < 2; ++i) {
    machine.watched.calls.clear();
    const std::uint64_t before = machine.simulation.Now();
    manager.StopDevice();
    EXPECT_EQ(machine.watched.calls, Calls{"Sleep 100"});
    EXPECT_EQ(machine.simulation.Now() - before, 100u);
  }
}

TEST(StopDevice, NothingIsPolledAfterIt) {
  Machine machine;
  machine.simulation.AddDevice(Pad("Pad", 1));
  DeviceManager& manager = machine.Make();
  ASSERT_TRUE(manager.SelectDevice(0));
  machine.simulation.RunFor(100);
  EXPECT_EQ(machine.watched.Count("Poll"), 5);
  manager.StopDevice();
  machine.watched.calls.clear();
  machine.simulation.RunFor(1000);
  EXPECT_TRUE(machine.watched.calls.empty());
}

}  // namespace
}  // namespace kelvaro
