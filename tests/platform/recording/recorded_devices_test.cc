#include "app/platform/recording/recorded_devices.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "app/platform/recording/simulated_device.h"
#include "app/platform/simulation/simulation.h"

namespace platform {

namespace {

// A clock that a test sets.
class SetClock final : public Clock {
 public:
  void Sleep(std::uint32_t ms) override { tick += ms; }
  std::uint32_t GetTickCount() override { return tick; }
  std::atomic<std::uint32_t> tick{0};
};

Recording TwoPresses() {
  Recording recording;
  recording.device.name = "Recorded";
  for (const std::uint32_t button : {1u, 2u}) {
    StateChange change;
    change.t = 100 * button;
    change.hasButtons = true;
    change.buttons = {button};
    recording.changes.push_back(change);
  }
  return recording;
}

DirectInputDevice* Open(Devices& devices, const GUID& guid) {
  DirectInput* directory = nullptr;
  EXPECT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directory), DI_OK);
  DirectInputDevice* device = nullptr;
  EXPECT_EQ(directory->CreateDevice(guid, &device), DI_OK);
  directory->Release();
  return device;
}

int HeldButton(DirectInputDevice* device) {
  DIJOYSTATE2 state;
  if (device->Poll() != DI_OK || device->GetDeviceState(sizeof state, &state) != DI_OK) return -1;
  for (int button = 0; button < 128; ++button) {
    if (state.rgbButtons[button]) return button + 1;
  }
  return 0;
}

TEST(RecordedDevices, PlayFromTheFirstAcquireAgainstAnyClock) {
  SetClock clock;
  clock.tick = 5000;
  const Recording recording = TwoPresses();
  RecordedDevices devices(recording, clock);
  DirectInputDevice* device = Open(devices, recording.device.guid);
  clock.tick = 7000;
  EXPECT_EQ(device->Acquire(), DI_OK);
  EXPECT_EQ(HeldButton(device), 0);
  clock.tick = 7099;
  EXPECT_EQ(HeldButton(device), 0);
  clock.tick = 7100;
  EXPECT_EQ(HeldButton(device), 1);
  clock.tick = 7199;
  EXPECT_EQ(HeldButton(device), 1);
  clock.tick = 7250;
  EXPECT_EQ(HeldButton(device), 2);
  device->Release();
}

TEST(RecordedDevices, PlayThroughAWrapOfTheClock) {
  SetClock clock;
  clock.tick = 0xFFFFFF80u;
  const Recording recording = TwoPresses();
  RecordedDevices devices(recording, clock);
  DirectInputDevice* device = Open(devices, recording.device.guid);
  EXPECT_EQ(device->Acquire(), DI_OK);
  clock.tick = 0xFFFFFFE4u;
  EXPECT_EQ(HeldButton(device), 1);
  clock.tick = 0x47u;  // 199 ms behind the start
  EXPECT_EQ(HeldButton(device), 1);
  clock.tick = 0x48u;
  EXPECT_EQ(HeldButton(device), 2);
  device->Release();
}

TEST(RecordedDevices, MayBePolledOnAnotherThread) {
  SetClock clock;
  const Recording recording = TwoPresses();
  RecordedDevices devices(recording, clock);
  DirectInputDevice* device = Open(devices, recording.device.guid);
  EXPECT_EQ(device->Acquire(), DI_OK);
  int last = 0;
  bool rising = true;
  std::thread poller([&] {
    for (int poll = 0; poll < 1000; ++poll) {
      const int held = HeldButton(device);
      rising = rising && held >= last;
      last = held;
    }
  });
  for (int ms = 0; ms < 250; ++ms) {
    ++clock.tick;
    devices.Device().State();
  }
  poller.join();
  EXPECT_TRUE(rising);
  EXPECT_EQ(HeldButton(device), 2);
  device->Release();
}

}  // namespace
}  // namespace platform
