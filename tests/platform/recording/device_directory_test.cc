#include "app/platform/recording/device_directory.h"

#include <gtest/gtest.h>

#include <map>

#include "app/platform/simulation/simulation.h"
#include "tests/platform/simulation/virtual_thread.h"

namespace platform {

using simulation::Bodies;
using simulation::Simulation;
namespace {

constexpr GUID kFirst{0x11111111, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID kSecond{0x22222222, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID kAbsent{0x33333333, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr std::uint32_t kStateSize = 272;

DeviceDescription Described(const std::string& name, const GUID& guid) {
  DeviceDescription description;
  description.name = name;
  description.guid = guid;
  return description;
}

StateChange Buttons(std::initializer_list<std::uint32_t> buttons) {
  StateChange change;
  change.hasButtons = true;
  change.buttons = buttons;
  return change;
}

StateChange Lost(bool lost) {
  StateChange change;
  change.hasLost = true;
  change.lost = lost;
  return change;
}

StateChange At(std::uint64_t t, StateChange change) {
  change.t = t;
  return change;
}

// One device in a fresh simulation, opened like a program does.
class OpenPad : public ::testing::Test {
 protected:
  OpenPad() : pad(sim.AddDevice(Described("Pad", kFirst))) {
    EXPECT_EQ(devices().DirectInput8Create(DIRECTINPUT_VERSION_8, &directory), DI_OK);
    EXPECT_EQ(directory->CreateDevice(kFirst, &device), DI_OK);
  }
  ~OpenPad() override {
    device->Release();
    directory->Release();
    EXPECT_EQ(sim.OpenDeviceObjects(), 0u);
  }

  // The state after a poll.
  DIJOYSTATE2 Polled() {
    DIJOYSTATE2 state;
    EXPECT_EQ(device->Poll(), DI_OK);
    EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
    return state;
  }

  Simulation sim;
  SimulatedDevice& pad;
  DirectInput* directory = nullptr;
  DirectInputDevice* device = nullptr;
};

std::vector<std::string> AttachedNames() {
  DirectInput* directory = nullptr;
  EXPECT_EQ(devices().DirectInput8Create(DIRECTINPUT_VERSION_8, &directory), DI_OK);
  std::vector<std::string> names;
  EXPECT_EQ(directory->EnumDevices(
                DI8DEVCLASS_GAMECTRL,
                [&](const DIDEVICEINSTANCE& instance) {
                  EXPECT_EQ(instance.dwSize, 580u);
                  names.push_back(instance.tszInstanceName);
                  return true;
                },
                DIEDFL_ATTACHEDONLY),
            DI_OK);
  directory->Release();
  return names;
}

TEST(DeviceDirectory, ListsAttachedDevicesInTheOrderOfAdding) {
  Simulation sim;
  EXPECT_EQ(AttachedNames(), std::vector<std::string>{});
  SimulatedDevice& second = sim.AddDevice(Described("Wheel", kSecond));
  sim.AddDevice(Described("Pad", kFirst));
  EXPECT_EQ(AttachedNames(), (std::vector<std::string>{"Wheel", "Pad"}));
  second.Unplug();
  EXPECT_EQ(AttachedNames(), (std::vector<std::string>{"Pad"}));
  second.PlugIn();
  EXPECT_EQ(AttachedNames(), (std::vector<std::string>{"Wheel", "Pad"}));
  second.Lose();
  EXPECT_EQ(AttachedNames(), (std::vector<std::string>{"Wheel", "Pad"}));
}

TEST_F(OpenPad, VisitsNoDeviceOnceTheVisitorHasEnoughAndNoneOfAnotherClass) {
  sim.AddDevice(Described("Wheel", kSecond));
  int visits = 0;
  const auto once = [&](const DIDEVICEINSTANCE&) { return ++visits < 1; };
  EXPECT_EQ(directory->EnumDevices(DI8DEVCLASS_GAMECTRL, once, DIEDFL_ATTACHEDONLY), DI_OK);
  constexpr std::uint32_t kKeyboards = 3;
  EXPECT_EQ(directory->EnumDevices(kKeyboards, once, DIEDFL_ATTACHEDONLY), DI_OK);
  EXPECT_EQ(visits, 1);
}

TEST(DeviceDirectory, CutsALongName) {
  Simulation sim;
  sim.AddDevice(Described(std::string(300, 'n'), kFirst));
  EXPECT_EQ(AttachedNames(), (std::vector<std::string>{std::string(259, 'n')}));
}

TEST(DeviceDirectory, IsMadeForItsVersionOnly) {
  Simulation sim;
  DirectInput* directory = nullptr;
  EXPECT_EQ(devices().DirectInput8Create(0x0900, &directory), DIERR_OLDDIRECTINPUTVERSION);
  EXPECT_EQ(devices().DirectInput8Create(0x0700, &directory), DIERR_BETADIRECTINPUTVERSION);
  EXPECT_EQ(devices().DirectInput8Create(DIRECTINPUT_VERSION_8, nullptr), DIERR_INVALIDPARAM);
  EXPECT_EQ(directory, nullptr);
}

TEST_F(OpenPad, ADeviceThatIsNotThereCannotBeMade) {
  DirectInputDevice* other = nullptr;
  EXPECT_EQ(directory->CreateDevice(kAbsent, &other), DIERR_DEVICENOTREG);
  pad.Unplug();
  EXPECT_EQ(directory->CreateDevice(kFirst, &other), DIERR_DEVICENOTREG);
  EXPECT_EQ(other, nullptr);
}

TEST_F(OpenPad, TellsItsCapabilities) {
  DeviceDescription description = Described("Big", kSecond);
  description.buttons = 128;
  description.axes = 8;
  description.povs = 4;
  sim.AddDevice(description);
  DirectInputDevice* big = nullptr;
  ASSERT_EQ(directory->CreateDevice(kSecond, &big), DI_OK);
  DIDEVCAPS caps;
  EXPECT_EQ(big->GetCapabilities(&caps), DI_OK);
  EXPECT_EQ(caps.dwSize, 44u);
  EXPECT_EQ(caps.dwButtons, 128u);
  EXPECT_EQ(caps.dwAxes, 8u);
  EXPECT_EQ(caps.dwPOVs, 4u);
  big->Release();
  EXPECT_EQ(device->GetCapabilities(&caps), DI_OK);
  EXPECT_EQ(caps.dwButtons, 11u);
  EXPECT_EQ(caps.dwAxes, 6u);
  EXPECT_EQ(caps.dwPOVs, 1u);
  caps.dwSize = 43;
  EXPECT_EQ(device->GetCapabilities(&caps), DIERR_INVALIDPARAM);
}

TEST_F(OpenPad, TakesARangeForEachOfItsAxes) {
  std::vector<std::uint32_t> ids;
  EXPECT_EQ(device->EnumObjects(
                [&](std::uint32_t id) {
                  ids.push_back(id);
                  return true;
                },
                DIDFT_AXIS),
            DI_OK);
  ASSERT_EQ(ids.size(), 6u);
  DIPROPRANGE range;
  range.diph.dwHow = DIPH_BYID;
  range.diph.dwObj = ids[2];
  range.lMin = -32000;
  range.lMax = 32000;
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DI_OK);
  range.diph.dwObj = ids[5] + (ids[5] - ids[4]);
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DIERR_INVALIDPARAM) << "a seventh axis";
  range.diph.dwObj = ids[2];
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE + 1, range), DIERR_INVALIDPARAM);
  range.lMin = 1;
  range.lMax = 0;
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DIERR_INVALIDPARAM);
  range.lMax = 5;
  range.diph.dwHow = 0;
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DIERR_INVALIDPARAM);
}

TEST_F(OpenPad, AcquireComesBeforePolls) {
  DIJOYSTATE2 state;
  EXPECT_EQ(device->Poll(), DIERR_NOTACQUIRED);
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DIERR_NOTACQUIRED);
  EXPECT_EQ(device->Unacquire(), DI_NOEFFECT);
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(device->Acquire(), DI_NOEFFECT);
  EXPECT_EQ(device->Poll(), DI_OK);
  EXPECT_EQ(device->GetDeviceState(kStateSize - 1, &state), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
  EXPECT_EQ(device->Unacquire(), DI_OK);
  EXPECT_EQ(device->Poll(), DIERR_NOTACQUIRED);
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DIERR_NOTACQUIRED);
}

TEST_F(OpenPad, SharesTheDeviceInOneWayAndOnePlace) {
  EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_BACKGROUND | DISCL_NONEXCLUSIVE), DI_OK);
  EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_BACKGROUND), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_NONEXCLUSIVE), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->SetCooperativeLevel(0, 15), DIERR_INVALIDPARAM);
}

TEST_F(OpenPad, AtFirstEverythingIsAtRest) {
  device->Acquire();
  const DIJOYSTATE2 state = Polled();
  DIJOYSTATE2 rest;
  for (std::uint32_t& hat : rest.rgdwPOV) hat = 0xFFFFFFFFu;
  EXPECT_EQ(std::memcmp(&state, &rest, sizeof state), 0);
}

TEST_F(OpenPad, ShowsWhatATestDoes) {
  device->Acquire();
  pad.Press({1, 11});
  pad.MoveAxis("Axis_X0", -32000);
  pad.MoveAxis("SliderB3", 5);
  pad.PointHat(1, 27000);
  DIJOYSTATE2 state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0x80);
  EXPECT_EQ(state.rgbButtons[1], 0);
  EXPECT_EQ(state.rgbButtons[10], 0x80);
  EXPECT_EQ(state.lX, -32000);
  EXPECT_EQ(state.rglFSlider[1], 5);
  EXPECT_EQ(state.rgdwPOV[0], kPovCentred);
  EXPECT_EQ(state.rgdwPOV[1], 27000u);
  pad.Press({2});
  pad.PointHat(1, kPovCentred);
  state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_EQ(state.rgbButtons[1], 0x80);
  EXPECT_EQ(state.lX, -32000) << "what isn't named stays";
  EXPECT_EQ(state.rgdwPOV[1], kPovCentred);
}

TEST_F(OpenPad, GivesTheStateOfTheLastPoll) {
  device->Acquire();
  pad.Press({1});
  DIJOYSTATE2 state;
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_EQ(device->Poll(), DI_OK);
  pad.Press({});
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
  EXPECT_EQ(state.rgbButtons[0], 0x80);
}

TEST_F(OpenPad, AcquireTakesInWhatIsHeldAlready) {
  pad.Press({3});
  device->Acquire();
  DIJOYSTATE2 state;
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
  EXPECT_EQ(state.rgbButtons[2], 0x80);
}

TEST_F(OpenPad, AChangeIsInForceForAPollAtItsMillisecond) {
  Bodies bodies;
  device->Acquire();
  pad.ChangeAt(20, Buttons({1}));
  pad.ChangeAt(21, Buttons({}));
  pad.ChangeAt(10, Buttons({2}));
  std::map<std::uint32_t, std::string> seen;
  bodies.Tick(5, [&] {
    const DIJOYSTATE2 state = Polled();
    seen[clock().GetTickCount()] = state.rgbButtons[0] ? "1" : state.rgbButtons[1] ? "2" : "none";
  });
  sim.RunFor(25);
  const std::map<std::uint32_t, std::string> expected{
      {5, "none"}, {10, "2"}, {15, "2"}, {20, "1"}, {25, "none"}};
  EXPECT_EQ(seen, expected);
}

TEST_F(OpenPad, OfChangesAtOneMillisecondTheLaterCallWins) {
  device->Acquire();
  pad.ChangeAt(5, Buttons({1}));
  pad.ChangeAt(5, Buttons({2}));
  sim.RunFor(5);
  EXPECT_EQ(Polled().rgbButtons[1], 0x80);
  EXPECT_EQ(pad.State().rgbButtons[0], 0);
}

TEST_F(OpenPad, AChangeAtATimeThatHasPassedCountsAtOnce) {
  device->Acquire();
  sim.RunFor(50);
  pad.ChangeAt(20, Buttons({1}));
  EXPECT_EQ(Polled().rgbButtons[0], 0x80);
}

TEST_F(OpenPad, ALostDeviceFailsUntilItReturns) {
  device->Acquire();
  pad.Press({1});
  pad.Lose();
  DIJOYSTATE2 state;
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DIERR_INPUTLOST);
  EXPECT_LT(device->Acquire(), 0);
  pad.Press({2});
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  pad.Return();
  EXPECT_EQ(device->Acquire(), DI_OK);
  state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_EQ(state.rgbButtons[1], 0x80) << "changed while it was lost";
}

TEST_F(OpenPad, APollAtTheMillisecondOfTheReturnIsAnswered) {
  Bodies bodies;
  device->Acquire();
  pad.ChangeAt(10, Lost(true));
  pad.ChangeAt(25, Lost(false));
  std::map<std::uint32_t, HRESULT> results;
  bodies.Tick(5, [&] { results[clock().GetTickCount()] = device->Poll(); });
  sim.RunFor(30);
  const std::map<std::uint32_t, HRESULT> expected{
      {5, DI_OK}, {10, DIERR_INPUTLOST}, {15, DIERR_INPUTLOST}, {20, DIERR_INPUTLOST}, {25, DI_OK},
      {30, DI_OK}};
  EXPECT_EQ(results, expected);
}

TEST_F(OpenPad, PlaysFromItsFirstAcquireOn) {
  pad.Play({At(0, Buttons({1})), At(100, Buttons({2}))});
  sim.RunFor(500);
  EXPECT_EQ(pad.State().rgbButtons[0], 0) << "it hasn't begun";
  device->Acquire();
  EXPECT_EQ(Polled().rgbButtons[0], 0x80);
  sim.RunUntil(599);
  EXPECT_EQ(Polled().rgbButtons[0], 0x80);
  device->Unacquire();
  device->Acquire();
  sim.RunUntil(600);
  EXPECT_EQ(Polled().rgbButtons[1], 0x80) << "100 ms behind the first Acquire";
}

TEST_F(OpenPad, PlaysBesideWhatIsPlannedAlready) {
  sim.RunFor(10);
  device->Acquire();
  pad.ChangeAt(30, Buttons({3}));
  pad.Play({At(5, Buttons({1})), At(20, Buttons({4})), At(40, Buttons({5}))});
  std::string seen;
  for (const std::uint64_t t : {14, 15, 29, 30, 49, 50}) {
    sim.RunUntil(t);
    const DIJOYSTATE2 state = Polled();
    for (int button = 0; button < 5; ++button) {
      if (state.rgbButtons[button]) seen += std::to_string(button + 1);
    }
    seen += '@';
    seen += std::to_string(t);
    seen += ' ';
  }
  EXPECT_EQ(seen, "@14 1@15 1@29 4@30 4@49 5@50 ");
}

TEST_F(OpenPad, ARecordingThatBeginsLostCanBeStarted) {
  pad.Play({At(0, Lost(true)), At(10, Lost(false))});
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  sim.RunFor(10);
  EXPECT_EQ(device->Poll(), DI_OK);
}

TEST_F(OpenPad, APlannedSuccessIsCarriedOut) {
  sim.FailNext("Acquire", DI_NOEFFECT);
  EXPECT_EQ(device->Acquire(), DI_NOEFFECT);
  pad.Press({1});
  sim.FailAlways("Poll", DI_NOEFFECT);
  EXPECT_EQ(device->Poll(), DI_NOEFFECT);
  DIJOYSTATE2 state;
  EXPECT_EQ(device->GetDeviceState(kStateSize, &state), DI_OK);
  EXPECT_EQ(state.rgbButtons[0], 0x80);
  sim.Mend("Poll");
  EXPECT_EQ(device->Poll(), DI_OK);
}

TEST(DeviceDirectoryDeathTest, ScriptsNameOnlyWhatADeviceCanHave) {
  Simulation sim;
  SimulatedDevice& pad = sim.AddDevice(Described("Pad", kFirst));
  EXPECT_DEATH(pad.Press({0}), "no button 0");
  EXPECT_DEATH(pad.Press({129}), "no button 129");
  EXPECT_DEATH(pad.MoveAxis("Axis_Q0", 1), "no axis Axis_Q0");
  EXPECT_DEATH(pad.PointHat(4, 0), "no hat 4");
}

}  // namespace
}  // namespace platform
