// The same on a real kernel, with devices made through uinput. Keys go out for real, so this is for
// a machine that nobody works at: tests/kernel/vm env KELVARO_REQUIRE=uinput test_linux.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <malloc.h>
#include <stdio.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "app/platform/linux/linux_clock.h"
#include "app/platform/linux/linux_devices.h"
#include "app/platform/linux/uinput_input.h"
#include "tests/host/files.h"
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
      GTEST_SKIP() << "types for real: only with KELVARO_REQUIRE=uinput, on a machine of its own";
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

TEST_F(OwnMachineTest, EventsThatTheKernelDroppedAreCaughtUpWith) {
  VirtualPad pad("Pad of Floods");
  ASSERT_TRUE(pad.Made());
  Select("Pad of Floods");
  Polled();
  // Far more than the kernel keeps for a reader.
  for (int i = 1; i <= 3000; ++i) pad.Say(EV_ABS, ABS_X, i % 2 == 0 ? 100 : -100);
  pad.Say(EV_KEY, BTN_A, 1);
  pad.Say(EV_ABS, ABS_X, 25);
  const DIJOYSTATE2 state = Polled();
  EXPECT_EQ(state.rgbButtons[0], 0x80);
  EXPECT_EQ(state.lX, 8000);
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

// Reads what a node says; the times are left out.
class NodeReader {
 public:
  explicit NodeReader(const std::string& node)
      : fd(open(node.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  ~NodeReader() {
    if (fd >= 0) close(fd);
  }
  NodeReader(const NodeReader&) = delete;
  NodeReader& operator=(const NodeReader&) = delete;
  bool IsOpen() const { return fd >= 0; }
  int Fd() const { return fd; }
  std::string All() const {
    std::string text;
    input_event event;
    while (read(fd, &event, sizeof event) == sizeof event) {
      if (!text.empty()) text += ", ";
      text += std::to_string(event.type) + " " + std::to_string(event.code) + " " +
              std::to_string(event.value);
    }
    return text;
  }

 private:
  const int fd;
};

class OwnInputTest : public OwnMachineTest {
 protected:
  void SetUp() override {
    OwnMachineTest::SetUp();
    if (IsSkipped()) return;
    int errorCode = 0;
    input = UinputInput::Open(&errorCode);
    ASSERT_NE(input, nullptr) << errorCode;
  }
  // Opens the node once it is there. It is of that name, and on the bus of real ones.
  void Read(const std::string& node, const char* name) {
    ASSERT_TRUE(Eventually([&] {
      reader = std::make_unique<NodeReader>(node);
      return reader->IsOpen();
    }));
    libevdev* device = nullptr;
    ASSERT_EQ(libevdev_new_from_fd(reader->Fd(), &device), 0);
    EXPECT_STREQ(libevdev_get_name(device), name);
    EXPECT_EQ(libevdev_get_id_bustype(device), BUS_USB);
    libevdev_free(device);
  }

  std::unique_ptr<UinputInput> input;
  std::unique_ptr<NodeReader> reader;
};

TEST_F(OwnInputTest, KeysComeOutOfTheVirtualKeyboard) {
  ASSERT_NO_FATAL_FAILURE(Read(input->KeyboardNode(), "Kelvaro Keyboard"));
  input->keybd_event('A', 0x1E, 0, 0);
  input->keybd_event('A', 0x1E, 0, 0);  // dropped by the kernel
  input->keybd_event('B', 0x30, KEYEVENTF_KEYUP, 0);
  input->keybd_event('A', 0x1E, KEYEVENTF_KEYUP, 0);
  input->keybd_event(0xFE, 0, 0, 0);
  input->keybd_event(0xFE, 0, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(reader->All(), "1 30 1, 0 0 0, 1 30 0, 0 0 0, 1 355 1, 0 0 0, 1 355 0, 0 0 0");
  EXPECT_EQ(input->FailedEvents(), 0u);
}

TEST_F(OwnInputTest, MotionAndButtonsComeOutOfTheVirtualMouse) {
  ASSERT_NO_FATAL_FAILURE(Read(input->MouseNode(), "Kelvaro Mouse"));
  input->mouse_event(MOUSEEVENTF_MOVE, 3, -4, 0, 0);
  input->mouse_event(MOUSEEVENTF_LEFTDOWN | MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
  input->mouse_event(MOUSEEVENTF_WHEEL, 0, 0, 150, 0);
  input->keybd_event(5, 0, 0, 0);
  input->keybd_event(5, 0, KEYEVENTF_KEYUP, 0);
  EXPECT_EQ(reader->All(),
            "2 0 3, 2 1 -4, 0 0 0, 1 272 1, 0 0 0, 1 272 0, 0 0 0, 2 8 1, 2 11 150, 0 0 0, "
            "1 275 1, 0 0 0, 1 275 0, 0 0 0");
}

TEST_F(OwnMachineTest, UinputIsWhatOpensFirst) {
  std::string error;
  const std::unique_ptr<LinuxInput> input = OpenLinuxInput(InputChoice::Auto, &error);
  ASSERT_NE(input, nullptr) << error;
  EXPECT_STREQ(input->Name(), "uinput");
}

TEST_F(OwnMachineTest, AMissingPermissionOrNodeIsTold) {
  const Variable none("DISPLAY");
  const auto refusal = [] {
    std::string error;
    EXPECT_EQ(OpenLinuxInput(InputChoice::Auto, &error), nullptr);
    return error;
  };
  constexpr uid_t kNobody = 65534;
  ASSERT_EQ(seteuid(kNobody), 0);
  std::string error = refusal();
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(error.find("can't send keys: no permission to open /dev/uinput"), 0u) << error;
  ASSERT_EQ(rename("/dev/uinput", "/dev/uinput.away"), 0);
  error = refusal();
  ASSERT_EQ(rename("/dev/uinput.away", "/dev/uinput"), 0);
  EXPECT_EQ(error.find("can't send keys: the kernel module uinput is not loaded"), 0u) << error;
}

TEST_F(OwnInputTest, OurOwnDevicesAreNoGameDevices) {
  EXPECT_TRUE(Named(kKeyboardName).empty());
  EXPECT_TRUE(Named(kMouseName).empty());
}

}  // namespace
}  // namespace platform
