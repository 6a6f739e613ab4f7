#include "app/platform/linux/linux_devices.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/direct_input.h"
#include "tests/platform/linux/evdev_description.h"
#include "tests/platform/linux/fake_nodes.h"

namespace platform {
namespace {

DeviceFacts Pad(const char* name, const char* unique = "") {
  EvdevDescription described(name);
  described.Ids(0x1234, 0x5678, 0x0111).Unique(unique);
  described.Keys({BTN_A, BTN_B, BTN_X}).Axis(ABS_X, -100, 100).Axis(ABS_Y, -100, 100);
  described.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1);
  return described.Facts();
}

DeviceFacts PadOfPort(const char* port) {
  EvdevDescription described("a");
  described.Ids(0x1234, 0x5678, 0x0111).Physical(port).Keys({BTN_A, BTN_B});
  described.Axis(ABS_X, -100, 100).Axis(ABS_Y, -100, 100);
  return described.Facts();
}

DeviceFacts Keyboard() {
  EvdevDescription described("A Keyboard");
  described.Keys(KEY_ESC, KEY_MICMUTE);
  return described.Facts();
}

struct ReleaseDevice {
  void operator()(DirectInputDevice* device) const { device->Release(); }
};
using Opened = std::unique_ptr<DirectInputDevice, ReleaseDevice>;

class LinuxDevicesTest : public ::testing::Test {
 protected:
  LinuxDevicesTest()
      : devices(std::make_unique<FakeNodes>(machine), [this] { return machine.nowMs.load(); }) {
    EXPECT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput), DI_OK);
  }
  ~LinuxDevicesTest() override {
    device.reset();
    directInput->Release();
  }

  std::vector<DIDEVICEINSTANCE> List() { return Listed(*directInput); }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const DIDEVICEINSTANCE& instance : List()) names.push_back(instance.tszInstanceName);
    return names;
  }

  // The device at that place of the list, as it is selected: scaled to -32000..32000, acquired.
  Opened Open(std::size_t index = 0, std::uint32_t share = DISCL_NONEXCLUSIVE,
              HRESULT acquired = DI_OK) {
    const std::vector<DIDEVICEINSTANCE> list = List();
    DirectInputDevice* device = nullptr;
    EXPECT_LT(index, list.size());
    if (index >= list.size()) return nullptr;
    EXPECT_EQ(directInput->CreateDevice(list[index].guidInstance, &device), DI_OK);
    EXPECT_EQ(device->SetDataFormat(), DI_OK);
    EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_BACKGROUND | share), DI_OK);
    ScaleAxes(*device);
    EXPECT_EQ(device->Acquire(), acquired);
    return Opened(device);
  }

  // One tick of a timer that polls: true on a good poll.
  static bool Tick(DirectInputDevice& device) {
    const HRESULT result = device.Poll();
    if (result == DI_OK || result == DI_NOEFFECT) return true;
    device.Acquire();
    return false;
  }

  // Ticks until it is found.
  bool ComesBack(DirectInputDevice& device) {
    for (int i = 0; i < 60000; ++i) {
      if (Tick(device)) return true;
      machine.nowMs += 10;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }

  // Polls until the loss is told.
  static void Lose(DirectInputDevice& device) {
    EXPECT_EQ(device.Poll(), DI_OK);
    EXPECT_EQ(device.Poll(), DIERR_INPUTLOST);
  }

  void PlugAndOpen(const DeviceFacts& facts, int number = 1) {
    pad = machine.Plug(number, facts);
    device = Open();
  }

  FakeMachine machine;
  LinuxDevices devices;
  DirectInput* directInput = nullptr;
  std::shared_ptr<FakeMachine::Plugged> pad;
  Opened device;
};

DIJOYSTATE2 AtRest() {
  DIJOYSTATE2 state;
  for (std::uint32_t& hat : state.rgdwPOV) hat = kPovCentred;
  return state;
}

::testing::AssertionResult Same(const DIJOYSTATE2& a, const DIJOYSTATE2& b) {
  if (std::memcmp(&a, &b, sizeof a) == 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "states differ";
}

TEST_F(LinuxDevicesTest, OnlyTheEighthVersionIsThere) {
  DirectInput* other = nullptr;
  EXPECT_EQ(devices.DirectInput8Create(0x0900, &other), DIERR_OLDDIRECTINPUTVERSION);
  EXPECT_EQ(devices.DirectInput8Create(0x0700, &other), DIERR_BETADIRECTINPUTVERSION);
  EXPECT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, nullptr), DIERR_INVALIDPARAM);
  EXPECT_EQ(other, nullptr);
}

TEST_F(LinuxDevicesTest, GameDevicesAreListedByTheirEventNumber) {
  machine.Plug(10, Pad("Tenth", "c"));
  machine.Plug(2, Pad("Second", "a"));
  machine.Plug(3, Keyboard());
  machine.Plug(7, Pad("Seventh", "b"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Second", "Seventh", "Tenth"}));
}

TEST_F(LinuxDevicesTest, AnAxisThatRestsAtItsLowEndTurnsNoHat) {
  EvdevDescription described("Odd Axis");
  described.Ids(0x1234, 0x5678, 1).Keys({BTN_A}).Axis(ABS_HAT0X, 0, 239).Axis(ABS_HAT0Y, -1, 1);
  PlugAndOpen(described.Facts());
  EXPECT_EQ(Polled(*device).rgdwPOV[0], kPovCentred);
  EXPECT_EQ(Polled(*device).rglSlider[0], -32000);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0X, 239);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0Y, 1);
  const DIJOYSTATE2 state = Polled(*device);
  EXPECT_EQ(state.rgdwPOV[0], 18000u);  // down alone
  EXPECT_EQ(state.rglSlider[0], 32000);
}

TEST_F(LinuxDevicesTest, AnEmptyMachineListsNothing) { EXPECT_EQ(Names().size(), 0u); }

TEST_F(LinuxDevicesTest, TheVisitorMayStop) {
  machine.Plug(1, Pad("a", "a"));
  machine.Plug(2, Pad("b", "b"));
  int visits = 0;
  EXPECT_EQ(directInput->EnumDevices(
                DI8DEVCLASS_GAMECTRL, [&](const DIDEVICEINSTANCE&) { return ++visits < 1; }, 0),
            DI_OK);
  EXPECT_EQ(visits, 1);
  EXPECT_EQ(directInput->EnumDevices(
                3, [](const DIDEVICEINSTANCE&) { return true; }, 0),
            DIERR_INVALIDPARAM);
}

TEST_F(LinuxDevicesTest, ADeviceThatMayNotBeOpenedIsNotListed) {
  machine.Plug(1, Pad("a", "a"))->openError = EACCES;
  EXPECT_EQ(Names().size(), 0u);
}

TEST_F(LinuxDevicesTest, ALongNameIsCut) {
  machine.Plug(1, Pad(std::string(300, 'x').c_str()));
  EXPECT_EQ(Names(), std::vector<std::string>{std::string(259, 'x')});
}

TEST_F(LinuxDevicesTest, EqualPadsDiffer) {
  machine.Plug(1, Pad("a"));
  machine.Plug(2, Pad("a"));
  const std::vector<DIDEVICEINSTANCE> list = List();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_NE(list[0].guidInstance, list[1].guidInstance);
  EXPECT_EQ(list[0].guidProduct, list[1].guidProduct);
  EXPECT_EQ(List()[1].guidInstance, list[1].guidInstance);
}

TEST_F(LinuxDevicesTest, AnUnknownIdentityIsNoDevice) {
  machine.Plug(1, Pad("a"));
  DirectInputDevice* device = nullptr;
  EXPECT_EQ(directInput->CreateDevice(GUID(), &device), DIERR_DEVICENOTREG);
  EXPECT_EQ(device, nullptr);
}

TEST_F(LinuxDevicesTest, CapabilitiesCountButtonsAxesAndHats) {
  PlugAndOpen(Pad("a"));
  DIDEVCAPS caps;
  EXPECT_EQ(device->GetCapabilities(&caps), DI_OK);
  EXPECT_EQ(caps.dwSize, 44u);
  EXPECT_EQ(caps.dwButtons, 3u);
  EXPECT_EQ(caps.dwAxes, 2u);
  EXPECT_EQ(caps.dwPOVs, 1u);
  caps.dwSize = 24;
  EXPECT_EQ(device->GetCapabilities(&caps), DIERR_INVALIDPARAM);
}

TEST_F(LinuxDevicesTest, AxesAreNamedByTheirPlaces) {
  EvdevDescription described("a");
  described.Keys({BTN_A}).Axes({ABS_X, ABS_RZ, ABS_THROTTLE});
  PlugAndOpen(described.Facts());
  std::vector<std::uint32_t> ids;
  device->EnumObjects(
      [&](std::uint32_t id) {
        ids.push_back(id);
        return true;
      },
      DIDFT_AXIS);
  EXPECT_EQ(ids, (std::vector<std::uint32_t>{0x002, 0x502, 0x602}));
}

TEST_F(LinuxDevicesTest, OtherPropertiesAndLevelsAreRefused) {
  PlugAndOpen(Pad("a"));
  DIPROPRANGE range;
  range.diph.dwHow = DIPH_BYID;
  range.diph.dwObj = 0x002;
  range.lMin = 0;
  range.lMax = 10;
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DI_OK);
  EXPECT_EQ(device->SetProperty(5, range), DIERR_INVALIDPARAM);
  range.lMin = 11;
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DIERR_INVALIDPARAM);
  range.lMin = 0;
  range.diph.dwObj = 0x202;  // lZ, which this pad lacks
  EXPECT_EQ(device->SetProperty(DIPROP_RANGE, range), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_EXCLUSIVE), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->SetCooperativeLevel(0, DISCL_BACKGROUND), DIERR_INVALIDPARAM);
}

TEST_F(LinuxDevicesTest, ASharedDeviceIsNeverGrabbed) {
  PlugAndOpen(Pad("a"));
  EXPECT_EQ(pad->grabs, 0);
  device.reset();
  EXPECT_EQ(pad->grabs, 0);
}

TEST_F(LinuxDevicesTest, AnExclusiveDeviceIsGrabbedWhileItIsAcquired) {
  pad = machine.Plug(1, Pad("a"));
  device = Open(0, DISCL_EXCLUSIVE);
  EXPECT_TRUE(pad->IsGrabbed());
  EXPECT_EQ(device->Acquire(), DI_NOEFFECT);
  EXPECT_EQ(pad->grabs, 1);
  EXPECT_EQ(device->Unacquire(), DI_OK);
  EXPECT_FALSE(pad->IsGrabbed());
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_TRUE(pad->IsGrabbed());
  device.reset();
  EXPECT_FALSE(pad->IsGrabbed());
}

TEST_F(LinuxDevicesTest, AnExclusiveDeviceThatIsBackIsGrabbedAgain) {
  pad = machine.Plug(1, Pad("a", "serial"));
  device = Open(0, DISCL_EXCLUSIVE);
  machine.Pull(pad);
  Lose(*device);
  pad = machine.Plug(2, Pad("a", "serial"));
  ASSERT_TRUE(ComesBack(*device));
  EXPECT_TRUE(pad->IsGrabbed());
}

TEST_F(LinuxDevicesTest, ADeviceThatAnotherProgramHasGrabbedIsSoToldAndTakenOnceItIsFree) {
  pad = machine.Plug(1, Pad("a"));
  pad->grabbedElsewhere = true;
  device = Open(0, DISCL_EXCLUSIVE, DIERR_OTHERAPPHASPRIO);
  EXPECT_FALSE(Tick(*device));
  pad->grabbedElsewhere = false;
  EXPECT_FALSE(Tick(*device));
  EXPECT_TRUE(Tick(*device));
  EXPECT_TRUE(pad->IsGrabbed());
}

// Nothing tells when the other program lets go: the timer must not sleep until then.
TEST_F(LinuxDevicesTest, ADeviceThatIsBackInAnotherProgramsHandIsAskedForAtEachTick) {
  pad = machine.Plug(1, Pad("a", "serial"));
  device = Open(0, DISCL_EXCLUSIVE);
  machine.Pull(pad);
  Lose(*device);
  pollfd back{static_cast<int>(device->WaitForNews().value_or(-1)), POLLIN, 0};
  pad = machine.Plug(2, Pad("a", "serial"));
  pad->grabbedElsewhere = true;
  pad->fd = 77;
  ASSERT_EQ(poll(&back, 1, 20000), 1);
  EXPECT_EQ(device->Acquire(), DIERR_OTHERAPPHASPRIO);
  EXPECT_EQ(device->WaitForNews(), std::nullopt);
  pad->grabbedElsewhere = false;
  EXPECT_FALSE(Tick(*device));
  EXPECT_TRUE(Tick(*device));
  EXPECT_EQ(device->WaitForNews(), 77);
}

TEST_F(LinuxDevicesTest, ADeviceThatIsPulledWhileAnotherProgramHasItComesBackAsWell) {
  pad = machine.Plug(1, Pad("a", "serial"));
  pad->grabbedElsewhere = true;
  device = Open(0, DISCL_EXCLUSIVE, DIERR_OTHERAPPHASPRIO);
  machine.Pull(pad);
  EXPECT_EQ(device->Acquire(), DIERR_INPUTLOST);
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  pad = machine.Plug(2, Pad("a", "serial"));
  ASSERT_TRUE(ComesBack(*device));
  EXPECT_TRUE(pad->IsGrabbed());
}

TEST_F(LinuxDevicesTest, TheFirstStateIsWhatTheKernelHolds) {
  EvdevDescription described("a");
  described.Keys({BTN_A, BTN_B, BTN_X}).Down(BTN_B);
  described.Axis(ABS_X, -100, 100, 50).Axis(ABS_Y, 0, 200, 200);
  described.Axis(ABS_HAT0X, -1, 1, 1).Axis(ABS_HAT0Y, -1, 1, 0);
  PlugAndOpen(described.Facts());
  DIJOYSTATE2 expected = AtRest();
  expected.rgbButtons[1] = 0x80;
  expected.lX = 16000;
  expected.lY = 32000;
  expected.rgdwPOV[0] = 9000;
  EXPECT_TRUE(Same(Polled(*device), expected));
}

TEST_F(LinuxDevicesTest, EventsChangeTheState) {
  PlugAndOpen(Pad("a"));
  EXPECT_TRUE(Same(Polled(*device), AtRest()));
  FakeMachine::Say(*pad, EV_KEY, BTN_X, 1);
  FakeMachine::Say(*pad, EV_ABS, ABS_X, -100);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0X, -1);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0Y, 1);
  FakeMachine::Say(*pad, EV_SYN, SYN_REPORT, 0);
  DIJOYSTATE2 expected = AtRest();
  expected.rgbButtons[2] = 0x80;
  expected.lX = -32000;
  expected.rgdwPOV[0] = 22500;
  EXPECT_TRUE(Same(Polled(*device), expected));
  FakeMachine::Say(*pad, EV_KEY, BTN_X, 0);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0X, 0);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0Y, 0);
  expected = AtRest();
  expected.lX = -32000;
  EXPECT_TRUE(Same(Polled(*device), expected));
}

TEST_F(LinuxDevicesTest, EventsOfNoConcernChangeNothing) {
  PlugAndOpen(Pad("a"));
  FakeMachine::Say(*pad, EV_KEY, KEY_A, 1);
  FakeMachine::Say(*pad, EV_MSC, MSC_SCAN, 0x90001);
  FakeMachine::Say(*pad, EV_ABS, ABS_MISC, 7);
  FakeMachine::Say(*pad, EV_KEY, 0xFFFF, 1);
  FakeMachine::Say(*pad, EV_ABS, 0xFFFF, 1);
  EXPECT_TRUE(Same(Polled(*device), AtRest()));
}

TEST_F(LinuxDevicesTest, AQuietPollReadsOnce) {
  PlugAndOpen(Pad("a"));
  const int before = pad->readsDone;
  EXPECT_EQ(device->Poll(), DI_OK);
  EXPECT_EQ(pad->readsDone, before + 1);
}

TEST_F(LinuxDevicesTest, TapsCanBeKeptApart) {
  for (const bool apart : {false, true}) {
    PlugAndOpen(Pad("a"));
    pad->fd = 77;
    device->SetTapsApart(apart);
    FakeMachine::Say(*pad, EV_KEY, BTN_A, 1);
    FakeMachine::Say(*pad, EV_KEY, BTN_A, 2);  // the kernel's repeat is no change
    FakeMachine::Say(*pad, EV_KEY, BTN_B, 1);
    FakeMachine::Say(*pad, EV_ABS, ABS_X, 100);
    FakeMachine::Say(*pad, EV_KEY, BTN_A, 0);
    FakeMachine::Say(*pad, EV_ABS, ABS_X, 0);
    FakeMachine::Say(*pad, EV_KEY, BTN_A, 1);
    DIJOYSTATE2 expected = AtRest();
    expected.rgbButtons[0] = expected.rgbButtons[1] = 0x80;
    if (apart) {
      expected.lX = 32000;
      EXPECT_TRUE(Same(Polled(*device), expected));
      EXPECT_EQ(device->WaitForNews(), std::nullopt);
      expected.rgbButtons[0] = 0;
      expected.lX = 0;
      EXPECT_TRUE(Same(Polled(*device), expected));
      EXPECT_EQ(device->WaitForNews(), std::nullopt);
      expected.rgbButtons[0] = 0x80;
    }
    EXPECT_TRUE(Same(Polled(*device), expected));
    EXPECT_TRUE(device->WaitForNews().has_value());
    machine.Pull(pad);
  }
}

TEST_F(LinuxDevicesTest, NewsIsWhatTheNodeHasOrTheReturnOfALostOne) {
  PlugAndOpen(Pad("a", "serial"), 5);
  const int node = pad->fd = 77;
  ASSERT_TRUE(device->WaitForNews().has_value());
  EXPECT_EQ(*device->WaitForNews(), node);
  machine.Pull(pad);
  EXPECT_EQ(device->Poll(), DI_OK);
  EXPECT_EQ(device->WaitForNews(), std::nullopt) << "the rest is to be followed by the loss";
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  ASSERT_TRUE(device->WaitForNews().has_value());
  pollfd back{static_cast<int>(*device->WaitForNews()), POLLIN, 0};
  EXPECT_NE(back.fd, node);
  EXPECT_EQ(poll(&back, 1, 0), 0);
  pad = machine.Plug(6, Pad("a", "serial"));
  pad->fd = 78;
  EXPECT_EQ(poll(&back, 1, 20000), 1);
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(poll(&back, 1, 0), 0);
  EXPECT_EQ(device->WaitForNews().value_or(kInvalidHandle), 78);
}

TEST_F(LinuxDevicesTest, LostEventsAreCaughtUpWith) {
  PlugAndOpen(Pad("a"));
  FakeMachine::Say(*pad, EV_KEY, BTN_A, 1);
  FakeMachine::Say(*pad, EV_SYN, SYN_DROPPED, 0, LIBEVDEV_READ_STATUS_SYNC);
  FakeMachine::Say(*pad, EV_KEY, BTN_A, 0, LIBEVDEV_READ_STATUS_SYNC);
  FakeMachine::Say(*pad, EV_KEY, BTN_B, 1, LIBEVDEV_READ_STATUS_SYNC);
  FakeMachine::Say(*pad, EV_KEY, BTN_X, 1);  // after it
  DIJOYSTATE2 expected = AtRest();
  expected.rgbButtons[1] = expected.rgbButtons[2] = 0x80;
  EXPECT_TRUE(Same(Polled(*device), expected));
  EXPECT_TRUE(pad->reads.empty());
}

TEST_F(LinuxDevicesTest, AStateNeedsAcquiringAndItsSize) {
  PlugAndOpen(Pad("a"));
  DIJOYSTATE2 state;
  EXPECT_EQ(device->GetDeviceState(80, &state), DIERR_INVALIDPARAM);
  EXPECT_EQ(device->Acquire(), DI_NOEFFECT);
  EXPECT_EQ(device->Unacquire(), DI_OK);
  EXPECT_EQ(device->Unacquire(), DI_NOEFFECT);
  EXPECT_EQ(device->Poll(), DIERR_NOTACQUIRED);
  EXPECT_EQ(device->GetDeviceState(sizeof state, &state), DIERR_NOTACQUIRED);
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(device->Poll(), DI_OK);
}

TEST_F(LinuxDevicesTest, APulledPadComesToRestBeforeItIsLost) {
  EvdevDescription described("a");
  described.Keys({BTN_A}).Axis(ABS_X, -100, 100).Axis(ABS_Z, 0, 255).Axis(ABS_HAT0Y, -1, 1);
  PlugAndOpen(described.Facts());
  FakeMachine::Say(*pad, EV_KEY, BTN_A, 1);
  FakeMachine::Say(*pad, EV_ABS, ABS_X, 100);
  FakeMachine::Say(*pad, EV_ABS, ABS_HAT0Y, -1);
  DIJOYSTATE2 expected = AtRest();
  expected.rgbButtons[0] = 0x80;
  expected.lX = 32000;
  expected.lZ = -32000;
  expected.rgdwPOV[0] = 0;
  EXPECT_TRUE(Same(Polled(*device), expected));
  machine.Pull(pad);
  EXPECT_TRUE(Same(Polled(*device), AtRest()));
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  DIJOYSTATE2 state;
  EXPECT_EQ(device->GetDeviceState(sizeof state, &state), DIERR_INPUTLOST);
}

// What a lost device is known by stands in device_return_test.cc.

TEST_F(LinuxDevicesTest, ALostPadComesBackWithTheStateThatItHasThen) {
  PlugAndOpen(Pad("a", "serial"), 5);
  for (int round = 0; round < 3; ++round) {
    machine.Pull(pad);
    Lose(*device);
    EXPECT_FALSE(Tick(*device));
    EvdevDescription described("a");
    described.Ids(0x1234, 0x5678, 0x0111).Unique("serial");
    described.Keys({BTN_A, BTN_B, BTN_X}).Axis(ABS_X, -100, 100).Axis(ABS_Y, -100, 100);
    described.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1).Down(BTN_B);
    pad = machine.Plug(20 + round, described.Facts());
    ASSERT_TRUE(ComesBack(*device)) << "round " << round;
    DIJOYSTATE2 expected = AtRest();
    expected.rgbButtons[1] = 0x80;
    EXPECT_TRUE(Same(Polled(*device), expected)) << "round " << round;
  }
}

TEST_F(LinuxDevicesTest, AReturnBeforeTheLossWasSeenIsNoLessOne) {
  PlugAndOpen(Pad("a", "serial"), 5);
  machine.Pull(pad);
  machine.Plug(5, Pad("a", "serial"));
  Lose(*device);
  ASSERT_TRUE(ComesBack(*device));
  EXPECT_TRUE(Same(Polled(*device), AtRest()));
}

TEST_F(LinuxDevicesTest, APadThatComesBackElsewhereGoesOn) {
  PlugAndOpen(PadOfPort("port1"), 5);
  machine.Pull(pad);
  Lose(*device);
  const auto back = machine.Plug(6, PadOfPort("port2"));
  ASSERT_TRUE(ComesBack(*device));
  FakeMachine::Say(*back, EV_KEY, BTN_B, 1);
  DIJOYSTATE2 expected = AtRest();
  expected.rgbButtons[1] = 0x80;
  EXPECT_TRUE(Same(Polled(*device), expected));
}

TEST_F(LinuxDevicesTest, TheRangesStayOverALossAndHoldForNewAxes) {
  PlugAndOpen(Pad("a", "serial"), 5);
  machine.Pull(pad);
  Lose(*device);
  // By cable it shows a second stick.
  EvdevDescription described("a");
  described.Ids(0x1234, 0x5678, 0x0222).Unique("serial").Keys({BTN_A, BTN_B, BTN_X});
  described.Axis(ABS_X, -100, 100).Axis(ABS_Y, -100, 100, -50).Axis(ABS_RX, -100, 100);
  described.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1);
  pad = machine.Plug(6, described.Facts());
  ASSERT_TRUE(ComesBack(*device));
  FakeMachine::Say(*pad, EV_ABS, ABS_X, 25);
  DIJOYSTATE2 expected = AtRest();
  expected.lX = 8000;
  expected.lY = -16000;
  expected.lRx = 0;
  EXPECT_TRUE(Same(Polled(*device), expected));
}

// The tick of a poll has no time for it.
TEST_F(LinuxDevicesTest, TheThreadThatPollsNeverListsOpensOrCloses) {
  PlugAndOpen(Pad("a", "serial"), 5);
  std::atomic<bool> inOpen{false};
  std::atomic<bool> mayOpen{false};
  machine.whileOpening = [&] {
    inOpen = true;
    while (!mayOpen) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  };
  machine.busy.clear();
  machine.Pull(pad);
  Lose(*device);
  pad = machine.Plug(6, Pad("a", "serial"));
  while (!inOpen) {
    EXPECT_FALSE(Tick(*device));
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(Tick(*device)) << "it doesn't wait for the open";
  mayOpen = true;
  ASSERT_TRUE(ComesBack(*device));
  const std::lock_guard<std::mutex> lock(machine.mutex);
  EXPECT_EQ(machine.busy.size(), 1u);
  EXPECT_EQ(machine.busy.count(std::this_thread::get_id()), 0u);
}

TEST_F(LinuxDevicesTest, TheEndOfALostDeviceWaitsForTheOpenUnderWay) {
  PlugAndOpen(Pad("a", "serial"), 5);
  std::atomic<bool> begun{false};
  std::atomic<bool> ended{false};
  machine.whileOpening = [&] {
    begun = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    ended = true;
  };
  machine.Pull(pad);
  Lose(*device);
  machine.Plug(6, Pad("a", "serial"));
  while (!begun) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  device.reset();
  EXPECT_TRUE(ended);
  EXPECT_EQ(machine.listeners, 0);
}

TEST_F(LinuxDevicesTest, ADeviceOutlivesItsDirectory) {
  machine.Plug(1, Pad("a"));
  DirectInput* other = nullptr;
  DirectInputDevice* device = nullptr;
  {
    LinuxDevices gone(std::make_unique<FakeNodes>(machine), [] { return std::int64_t{0}; });
    ASSERT_EQ(gone.DirectInput8Create(DIRECTINPUT_VERSION_8, &other), DI_OK);
    ASSERT_EQ(other->CreateDevice(List()[0].guidInstance, &device), DI_OK);
    other->Release();
  }
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(device->Poll(), DI_OK);
  device->Release();
}

TEST(UdevNodes, TheMachinesOwnListCanBeRead) {
  LinuxDevices devices;
  DirectInput* directInput = nullptr;
  ASSERT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput), DI_OK);
  for (const DIDEVICEINSTANCE& instance : Listed(*directInput))
    EXPECT_NE(instance.tszInstanceName[0], '\0');
  directInput->Release();
}

}  // namespace
}  // namespace platform
