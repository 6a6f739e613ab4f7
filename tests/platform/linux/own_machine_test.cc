// Devices of a real kernel, made through uinput, with udevd and without it: tests/kernel/vm env
// KELVARO_REQUIRE=uinput test_linux. What comes out of the virtual keyboard and mouse there, and
// how a closed or missing /dev/uinput is told, stands in tests/kernel/.
#include <gtest/gtest.h>
#include <libevdev/libevdev-uinput.h>
#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/linux_devices.h"
#include "tests/host/processes.h"
#include "tests/platform/direct_input.h"
#include "tests/platform/linux/evdev_description.h"

namespace platform {
namespace {

using namespace kelvaro::tests;

// A pad of the kernel's, there for the life of the object.
class VirtualPad {
 public:
  explicit VirtualPad(const char* name) {
    EvdevDescription described(name);
    described.Ids(0x1234, 0, 0).Keys({BTN_A, BTN_B, BTN_DPAD_UP}).Axis(ABS_X, -100, 100);
    described.Axis(ABS_HAT0X, -1, 1).Axis(ABS_HAT0Y, -1, 1);
    if (libevdev_uinput_create_from_device(described.Device(), LIBEVDEV_UINPUT_OPEN_MANAGED,
                                           &device) != 0)
      device = nullptr;
  }
  ~VirtualPad() {
    if (device) libevdev_uinput_destroy(device);
  }
  VirtualPad(const VirtualPad&) = delete;
  VirtualPad& operator=(const VirtualPad&) = delete;

  bool Made() const { return device != nullptr; }
  void Say(unsigned type, unsigned code, int value) {
    libevdev_uinput_write_event(device, type, code, value);
    libevdev_uinput_write_event(device, EV_SYN, SYN_REPORT, 0);
  }

 private:
  libevdev_uinput* device = nullptr;
};

class OwnMachineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!Required("uinput"))
      GTEST_SKIP() << "only with KELVARO_REQUIRE=uinput, on a machine of its own";
    ASSERT_EQ(access("/dev/uinput", W_OK), 0);
    ASSERT_EQ(devices.DirectInput8Create(DIRECTINPUT_VERSION_8, &directInput), DI_OK);
  }
  void TearDown() override {
    if (device) device->Release();
    if (directInput) directInput->Release();
  }

  std::vector<DIDEVICEINSTANCE> Named(const std::string& name) {
    std::vector<DIDEVICEINSTANCE> found;
    for (const DIDEVICEINSTANCE& instance : Listed(*directInput))
      if (name == instance.tszInstanceName) found.push_back(instance);
    return found;
  }

  void Select(const std::string& name) {
    ASSERT_TRUE(Eventually([&] { return !Named(name).empty(); }));
    identity = Named(name)[0].guidInstance;
    ASSERT_EQ(directInput->CreateDevice(identity, &device), DI_OK);
    ScaleAxes(*device);
    ASSERT_EQ(device->Acquire(), DI_OK);
  }

  DIJOYSTATE2 Polled() { return platform::Polled(*device); }

  LinuxDevices devices;
  DirectInput* directInput = nullptr;
  DirectInputDevice* device = nullptr;
  GUID identity;
};

TEST_F(OwnMachineTest, APadTellsItsStateFromTheOpeningOn) {
  VirtualPad pad("Pad of State");
  ASSERT_TRUE(pad.Made());
  pad.Say(EV_KEY, BTN_B, 1);
  pad.Say(EV_ABS, ABS_X, 50);
  Select("Pad of State");
  DIJOYSTATE2 state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0);
  EXPECT_EQ(state.rgbButtons[1], 0x80);
  EXPECT_EQ(state.lX, 16000);
  EXPECT_EQ(state.lY, 0);
  EXPECT_EQ(state.rgdwPOV[0], kPovCentred);
  pad.Say(EV_KEY, BTN_B, 0);
  pad.Say(EV_KEY, BTN_DPAD_UP, 1);
  pad.Say(EV_ABS, ABS_X, -100);
  pad.Say(EV_ABS, ABS_HAT0Y, -1);
  state = Polled();
  EXPECT_EQ(state.rgbButtons[1], 0);
  EXPECT_EQ(state.rgbButtons[2], 0x80);
  EXPECT_EQ(state.lX, -32000);
  EXPECT_EQ(state.rgdwPOV[0], 0u);
}

// Of the whole process, the read of the counter itself included.
long ReadCalls() {
  std::ifstream file("/proc/self/io");
  std::string word;
  long value = -1;
  while (file >> word)
    if (word == "syscr:") file >> value;
  return value;
}

TEST_F(OwnMachineTest, AQuietPollIsOneReadAndNoAllocation) {
  VirtualPad pad("Pad of Peace");
  ASSERT_TRUE(pad.Made());
  Select("Pad of Peace");
  Polled();
  const long start = ReadCalls();
  const long own = ReadCalls() - start;
  const long before = ReadCalls();
  for (int i = 0; i < 1000; ++i) device->Poll();
  EXPECT_EQ(ReadCalls() - before - own, 1000);
  const std::size_t allocated = mallinfo2().uordblks;
  for (int i = 0; i < 1000; ++i) device->Poll();
  EXPECT_EQ(mallinfo2().uordblks, allocated);
  EXPECT_GT(allocated, 0u);
}

TEST_F(OwnMachineTest, APulledPadComesToRestAndComesBackManyTimes) {
  auto pad = std::make_unique<VirtualPad>("Pad of Returns");
  ASSERT_TRUE(pad->Made());
  Select("Pad of Returns");
  for (int round = 0; round < 4; ++round) {
    pad->Say(EV_KEY, BTN_A, 1);
    pad->Say(EV_ABS, ABS_X, 100);
    pad->Say(EV_ABS, ABS_HAT0X, 1);
    DIJOYSTATE2 state = Polled();
    EXPECT_EQ(state.rgbButtons[0], 0x80);
    EXPECT_EQ(state.lX, 32000);
    EXPECT_EQ(state.rgdwPOV[0], 9000u);
    pad.reset();
    state = Polled();
    EXPECT_EQ(state.rgbButtons[0], 0);
    EXPECT_EQ(state.lX, 0);
    EXPECT_EQ(state.rgdwPOV[0], kPovCentred);
    EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
    for (int tick = 0; tick < 20; ++tick) EXPECT_EQ(device->Acquire(), DIERR_INPUTLOST);
    pad = std::make_unique<VirtualPad>("Pad of Returns");
    ASSERT_TRUE(pad->Made());
    ASSERT_TRUE(Eventually([&] { return device->Acquire() == DI_OK; })) << "round " << round;
  }
}

TEST_F(OwnMachineTest, OfTwoEqualPadsTheOneThatStaysIsLeftAlone) {
  auto first = std::make_unique<VirtualPad>("Twin");
  ASSERT_TRUE(first->Made());
  Select("Twin");
  VirtualPad second("Twin");
  ASSERT_TRUE(second.Made());
  ASSERT_TRUE(Eventually([&] { return Named("Twin").size() == 2; }));
  const std::vector<DIDEVICEINSTANCE> twins = Named("Twin");
  EXPECT_EQ(twins[0].guidInstance, identity);
  EXPECT_NE(twins[1].guidInstance, identity);
  first.reset();
  Polled();
  EXPECT_EQ(device->Poll(), DIERR_INPUTLOST);
  for (int tick = 0; tick < 50; ++tick) {
    EXPECT_EQ(device->Acquire(), DIERR_INPUTLOST);
    LinuxClock().Sleep(1);
  }
  first = std::make_unique<VirtualPad>("Twin");
  ASSERT_TRUE(first->Made());
  ASSERT_TRUE(Eventually([&] { return device->Acquire() == DI_OK; }));
  second.Say(EV_KEY, BTN_B, 1);
  first->Say(EV_KEY, BTN_A, 1);
  const DIJOYSTATE2 state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0x80);
  EXPECT_EQ(state.rgbButtons[1], 0);
}

}  // namespace
}  // namespace platform
