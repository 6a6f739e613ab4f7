// DirectInput with one pad that the test plays (tests/windows/dinput8/).
#include "app/platform/windows/windows_devices.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/platform/machine/this_machine.h"
#include "device/device_manager.h"
#include "tests/host/patience.h"
#include "tests/windows/dinput8/pad_hands.h"

// Last.
#include "app/platform/windows/win32.h"

namespace platform {
namespace {

using kelvaro::tests::PadHands;

class WindowsDevicesTest : public ::testing::Test {
 protected:
  ~WindowsDevicesTest() override {
    if (device) {
      device->Unacquire();
      device->Release();
    }
    if (directInput) directInput->Release();
  }

  // As the device manager does it.
  void Open(bool tapsApart = false) {
    ASSERT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput), DI_OK);
    std::vector<DIDEVICEINSTANCE> found;
    const auto add = [&found](const DIDEVICEINSTANCE& instance) {
      found.push_back(instance);
      return true;
    };
    ASSERT_EQ(directInput->EnumDevices(DI8DEVCLASS_GAMECTRL, add, DIEDFL_ATTACHEDONLY), DI_OK);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_STREQ(found[0].tszInstanceName, "Scripted pad");
    ASSERT_EQ(directInput->CreateDevice(found[0].guidInstance, &device), DI_OK);
    EXPECT_EQ(device->SetDataFormat(), DI_OK);
    EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_BACKGROUND | DISCL_NONEXCLUSIVE), DI_OK);
    EXPECT_EQ(device->EnumObjects(
                  [this](std::uint32_t id) {
                    DIPROPRANGE range;
                    range.diph.dwHow = 2;
                    range.diph.dwObj = id;
                    range.lMin = -32000;
                    range.lMax = 32000;
                    EXPECT_EQ(device->SetProperty(4, range), DI_OK);
                    return true;
                  },
                  3),
              DI_OK);
    device->SetTapsApart(tapsApart);
    EXPECT_EQ(device->Acquire(), DI_OK);
  }

  bool Polls() {
    const HRESULT result = device->Poll();
    return result == DI_OK || result == DI_NOEFFECT;
  }
  DIJOYSTATE2 State() {
    DIJOYSTATE2 state;
    EXPECT_TRUE(Polls());
    EXPECT_EQ(device->GetDeviceState(sizeof state, &state), DI_OK);
    return state;
  }
  bool IsDown(std::size_t button) { return State().rgbButtons[button] != 0; }
  bool HasNews(std::uint32_t ms) {
    const std::optional<Handle> news = device->WaitForNews();
    return news && WindowsThreads().WaitForSingleObject(*news, ms) == 0;
  }

  PadHands pad;
  WindowsDevices devices;
  DirectInput* directInput = nullptr;
  DirectInputDevice* device = nullptr;
};

TEST_F(WindowsDevicesTest, AFailureOfDirectInputIsHandedOn) {
  pad.Memory().failure = 0x80070057u;
  EXPECT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput),
            static_cast<HRESULT>(0x80070057u));
  EXPECT_EQ(directInput, nullptr);
}

TEST_F(WindowsDevicesTest, WhatThePadHasIsTold) {
  Open();
  DIDEVCAPS caps;
  EXPECT_EQ(device->GetCapabilities(&caps), DI_OK);
  EXPECT_EQ(caps.dwAxes, 2u);
  EXPECT_EQ(caps.dwButtons, 11u);
  EXPECT_EQ(caps.dwPOVs, 1u);
}

TEST_F(WindowsDevicesTest, AxesReadInTheRangeThatWasSetAndButtonsAsBytes) {
  Open();
  DIJOYSTATE2 state = State();
  EXPECT_EQ(state.lX, 0);
  EXPECT_EQ(state.rgdwPOV[0], 0xFFFFFFFFu);
  pad.Change(offsetof(DIJOYSTATE2, lX), 1000);
  pad.Change(offsetof(DIJOYSTATE2, lY), -500);
  pad.Change(offsetof(DIJOYSTATE2, rgdwPOV), 9000);
  pad.Button(10, true);
  state = State();
  EXPECT_EQ(state.lX, 32000);
  EXPECT_EQ(state.lY, -16000);
  EXPECT_EQ(state.rgdwPOV[0], 9000u);
  EXPECT_EQ(state.rgbButtons[10], 0x80);
  EXPECT_EQ(state.rgbButtons[9], 0);
}

// Without the look that is news, too.
TEST_F(WindowsDevicesTest, AChangeIsNews) {
  constexpr std::uint32_t kNever = 1'000'000'000;
  devices = WindowsDevices(kNever);
  Open();
  for (const bool down : {true, false, true}) {
    EXPECT_EQ(IsDown(0), !down);
    pad.Button(0, down);
    EXPECT_TRUE(HasNews(20'000));
    EXPECT_EQ(IsDown(0), down);
  }
}

TEST_F(WindowsDevicesTest, APadThatMustBePolledHasNoNews) {
  pad.Memory().mustBePolled = 1;
  Open();
  EXPECT_FALSE(IsDown(0));
  EXPECT_EQ(device->WaitForNews(), std::nullopt);
}

TEST_F(WindowsDevicesTest, ALostPadIsAskedAtEachTickUntilItIsBack) {
  Open();
  pad.Button(0, true);
  EXPECT_TRUE(IsDown(0));
  pad.Memory().unplugged = 1;
  EXPECT_EQ(device->Poll(), static_cast<HRESULT>(0x8007001Eu));
  EXPECT_EQ(device->Poll(), static_cast<HRESULT>(0x8007000Cu));
  EXPECT_LT(device->Acquire(), 0);
  EXPECT_EQ(device->WaitForNews(), std::nullopt);
  pad.Memory().unplugged = 0;
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_TRUE(IsDown(0));
  EXPECT_NE(device->WaitForNews(), std::nullopt);
}

TEST_F(WindowsDevicesTest, TapsAreReadOneByOneWhereTheyAreKeptApart) {
  Open(true);
  EXPECT_FALSE(IsDown(0));
  pad.Button(0, true);
  pad.Change(offsetof(DIJOYSTATE2, lX), 1000);
  pad.Button(0, false);
  pad.Button(1, true);
  DIJOYSTATE2 state = State();
  EXPECT_NE(state.rgbButtons[0], 0);
  EXPECT_EQ(state.lX, 32000);
  EXPECT_EQ(state.rgbButtons[1], 0) << "later than what has to wait";
  EXPECT_EQ(device->WaitForNews(), std::nullopt) << "there is more already";
  state = State();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_NE(state.rgbButtons[1], 0);
  EXPECT_NE(device->WaitForNews(), std::nullopt);
}

TEST_F(WindowsDevicesTest, TapsThatAreNotKeptApartAreReadAsTheyStand) {
  Open();
  EXPECT_FALSE(IsDown(0));
  pad.Button(0, true);
  pad.Button(0, false);
  pad.Button(1, true);
  const DIJOYSTATE2 state = State();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_NE(state.rgbButtons[1], 0);
}

TEST_F(WindowsDevicesTest, MoreChangesThanAPadKeepsAreTakenAsTheyStand) {
  Open(true);
  EXPECT_FALSE(IsDown(0));
  for (int i = 0; i < 300; ++i) pad.Button(0, i % 2 == 0);
  pad.Button(3, true);
  const DIJOYSTATE2 state = State();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_NE(state.rgbButtons[3], 0);
  EXPECT_NE(device->WaitForNews(), std::nullopt);
}

// The whole device layer above it: selected, polled by a timer that sleeps, lost and back.
class WindowsDeviceManager : public ::testing::Test {
 protected:
  ~WindowsDeviceManager() override { manager.StopDevice(); }

  void Select() {
    ASSERT_TRUE(manager.DirectInputCreated());
    manager.SetChangeCallback(
        [](kelvaro::DeviceManager*, const DIJOYSTATE2* state, void* context) {
          *static_cast<std::atomic<int>*>(context) = state->rgbButtons[2] != 0;
        },
        &down);
    manager.EnableChangeCallback();
    ASSERT_TRUE(manager.SetPollInterval(5));
    ASSERT_TRUE(manager.SelectDeviceByName("Scripted pad"));
    EXPECT_TRUE(ComesTo(0));
  }
  bool ComesTo(int wanted) {
    return kelvaro::tests::Eventually([&] { return down == wanted; });
  }

  PadHands pad;
  const ThisMachine machine;
  const InstalledPlatform installed{machine.Groups()};
  std::atomic<int> down{-1};
  kelvaro::DeviceManager manager{0};
};

TEST_F(WindowsDeviceManager, APressReachesTheProgramAlsoAfterThePadWasGone) {
  Select();
  for (const bool press : {true, false, true}) {
    pad.Button(2, press);
    EXPECT_TRUE(ComesTo(press ? 1 : 0));
  }
  pad.Memory().unplugged = 1;
  pad.Button(2, false);
  WindowsClock().Sleep(50);
  EXPECT_EQ(down, 1);
  pad.Memory().unplugged = 0;
  EXPECT_TRUE(ComesTo(0));
}

TEST_F(WindowsDeviceManager, APadThatGoesWithoutAWordWhileTheTimerSleepsIsMissed) {
  Select();
  pad.Button(2, true);
  EXPECT_TRUE(ComesTo(1));
  WindowsClock().Sleep(100);  // with nothing new, it sleeps
  pad.Memory().unplugged = 1;
  EXPECT_TRUE(kelvaro::tests::Eventually([&] { return pad.Memory().missed != 0; }));
  pad.Memory().unplugged = 0;
  pad.Button(2, false);
  EXPECT_TRUE(ComesTo(0));
}

}  // namespace
}  // namespace platform
