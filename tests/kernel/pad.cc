#include "tests/kernel/pad.h"

#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <linux/uhid.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/kernel/reader.h"
#include "tests/kernel/wait.h"

namespace kelvaro::kernel {
namespace {

[[noreturn]] void Fail(const char* what, int error) {
  std::fprintf(stderr, "%s: %s\n", what, std::strerror(error));
  std::exit(1);
}

// Written from the HID usage tables: Generic Desktop page (1) with Game Pad (5), X, Y, Z, Rz and
// Hat switch, and the Button page (9).
constexpr std::uint8_t kGamePadDescriptor[] = {
    0x05, 0x01,        // Usage Page (Generic Desktop)
    0x09, 0x05,        // Usage (Game Pad)
    0xA1, 0x01,        // Collection (Application)
    0x05, 0x09,        //   Usage Page (Button)
    0x19, 0x01,        //   Usage Minimum (1)
    0x29, 0x0A,        //   Usage Maximum (10)
    0x15, 0x00,        //   Logical Minimum (0)
    0x25, 0x01,        //   Logical Maximum (1)
    0x75, 0x01,        //   Report Size (1)
    0x95, 0x0A,        //   Report Count (10)
    0x81, 0x02,        //   Input (Data, Variable, Absolute)
    0x75, 0x06,        //   Report Size (6)
    0x95, 0x01,        //   Report Count (1)
    0x81, 0x03,        //   Input (Constant)
    0x05, 0x01,        //   Usage Page (Generic Desktop)
    0x09, 0x30,        //   Usage (X)
    0x09, 0x31,        //   Usage (Y)
    0x09, 0x32,        //   Usage (Z)
    0x09, 0x35,        //   Usage (Rz)
    0x26, 0xFF, 0x00,  //   Logical Maximum (255)
    0x75, 0x08,        //   Report Size (8)
    0x95, 0x04,        //   Report Count (4)
    0x81, 0x02,        //   Input (Data, Variable, Absolute)
    0x09, 0x39,        //   Usage (Hat switch)
    0x25, 0x07,        //   Logical Maximum (7)
    0x35, 0x00,        //   Physical Minimum (0)
    0x46, 0x3B, 0x01,  //   Physical Maximum (315)
    0x65, 0x14,        //   Unit (Degrees)
    0x75, 0x04,        //   Report Size (4)
    0x95, 0x01,        //   Report Count (1)
    0x81, 0x42,        //   Input (Data, Variable, Absolute, Null State)
    0x65, 0x00,        //   Unit (None)
    0x81, 0x03,        //   Input (Constant)
    0xC0,              // End Collection
};

void AppendRange(std::vector<unsigned int>* codes, unsigned int first, unsigned int last) {
  for (unsigned int code = first; code <= last; ++code) {
    codes->push_back(code);
  }
}

// Until the device is in udev's books, as it is for any pad that a person has plugged in.
void WaitForUdev(const std::string& node) {
  const bool known = Eventually(
      [&] {
        struct stat status = {};
        return stat(node.c_str(), &status) == 0 &&
               access(("/run/udev/data/c13:" + std::to_string(minor(status.st_rdev))).c_str(),
                      R_OK) == 0;
      },
      10000);
  if (!known) {
    Fail(("udev and " + node).c_str(), ENOENT);
  }
}

}  // namespace

PadShape OrdinaryPad(const std::string& name, const std::string& port) {
  PadShape shape;
  shape.name = name;
  shape.phys = port;
  shape.buttons = GamePadButtons(11);
  shape.axes = {{ABS_X}, {ABS_Y}, {ABS_Z}, {ABS_RX}, {ABS_RY}, {ABS_RZ}};
  shape.hats = 1;
  return shape;
}

std::vector<unsigned int> GamePadButtons(std::size_t count) {
  std::vector<unsigned int> codes = {BTN_SOUTH, BTN_EAST,   BTN_NORTH,  BTN_WEST,
                                     BTN_TL,    BTN_TR,     BTN_SELECT, BTN_START,
                                     BTN_MODE,  BTN_THUMBL, BTN_THUMBR};
  codes.resize(std::min(count, codes.size()));
  return codes;
}

std::vector<unsigned int> ManyButtons(std::size_t count) {
  std::vector<unsigned int> codes;
  if (count == 40) {
    AppendRange(&codes, BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY40);
  } else if (count == 24) {
    AppendRange(&codes, BTN_TRIGGER, BTN_DEAD);  // 16 of a stick
    AppendRange(&codes, BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY8);
  } else {
    // No pad of one kind has as many: what belongs to no mouse and no tablet, from every range.
    AppendRange(&codes, BTN_MISC, BTN_MISC + 15);
    AppendRange(&codes, BTN_JOYSTICK, BTN_JOYSTICK + 15);
    AppendRange(&codes, BTN_GAMEPAD, BTN_GAMEPAD + 15);
    AppendRange(&codes, BTN_WHEEL, BTN_WHEEL + 15);
    AppendRange(&codes, BTN_TRIGGER_HAPPY, BTN_TRIGGER_HAPPY + 63);
  }
  return codes;
}

UinputPad::UinputPad(const PadShape& shape) : buttons(shape.buttons) {
  libevdev* model = libevdev_new();
  libevdev_set_name(model, shape.name.c_str());
  libevdev_set_id_bustype(model, shape.bus);
  libevdev_set_id_vendor(model, shape.vendor);
  libevdev_set_id_product(model, shape.product);
  libevdev_set_id_version(model, shape.version);
  for (unsigned int code : shape.buttons) {
    libevdev_enable_event_code(model, EV_KEY, code, nullptr);
  }
  libevdev_enable_event_code(model, EV_MSC, MSC_SCAN, nullptr);
  for (const PadAxis& axis : shape.axes) {
    input_absinfo range = {};
    range.minimum = axis.minimum;
    range.maximum = axis.maximum;
    range.value = axis.value;
    libevdev_enable_event_code(model, EV_ABS, axis.code, &range);
  }
  for (int hat = 0; hat < shape.hats; ++hat) {
    input_absinfo range = {};
    range.minimum = -1;
    range.maximum = 1;
    libevdev_enable_event_code(model, EV_ABS, ABS_HAT0X + 2 * hat, &range);
    libevdev_enable_event_code(model, EV_ABS, ABS_HAT0Y + 2 * hat, &range);
  }
  fd = open("/dev/uinput", O_RDWR | O_CLOEXEC);
  if (fd < 0) {
    Fail("/dev/uinput", errno);
  }
  if (ioctl(fd, UI_SET_PHYS, shape.phys.c_str()) != 0) {
    Fail("UI_SET_PHYS", errno);
  }
  const int result = libevdev_uinput_create_from_device(model, fd, &device);
  libevdev_free(model);
  if (result != 0) {
    Fail("a pad through uinput", -result);
  }
  node = libevdev_uinput_get_devnode(device);
  WaitForUdev(node);
}

UinputPad::~UinputPad() {
  libevdev_uinput_destroy(device);
  close(fd);
}

void UinputPad::Put(unsigned int type, unsigned int code, int value) {
  const int result = libevdev_uinput_write_event(device, type, code, value);
  if (result != 0) {
    Fail("an event of a pad", -result);
  }
}

void UinputPad::Sync() { Put(EV_SYN, SYN_REPORT, 0); }

void UinputPad::Stir() {
  Put(EV_MSC, MSC_SCAN, 1);
  Sync();
}

void UinputPad::PutButton(std::size_t button, bool down) { Put(EV_KEY, buttons.at(button), down); }

void UinputPad::Press(std::size_t button) {
  PutButton(button, true);
  Sync();
}

void UinputPad::Release(std::size_t button) {
  PutButton(button, false);
  Sync();
}

void UinputPad::Tap(std::size_t button, int ms) {
  Press(button);
  WaitMs(ms);
  Release(button);
  WaitMs(std::min(ms, 50));
}

void UinputPad::Move(unsigned int axis, int value) {
  Put(EV_ABS, axis, value);
  Sync();
}

void UinputPad::PutHat(int hat, int angle) {
  int x = 0;
  int y = 0;
  if (angle >= 0) {
    const int eighth = angle / 4500 % 8;  // clockwise from north
    x = eighth >= 1 && eighth <= 3 ? 1 : eighth >= 5 ? -1 : 0;
    y = eighth >= 3 && eighth <= 5 ? 1 : eighth == 2 || eighth == 6 ? 0 : -1;
  }
  Put(EV_ABS, static_cast<unsigned int>(ABS_HAT0X + 2 * hat), x);
  Put(EV_ABS, static_cast<unsigned int>(ABS_HAT0Y + 2 * hat), y);
}

void UinputPad::TurnHat(int hat, int angle) {
  PutHat(hat, angle);
  Sync();
}

void UinputPad::Nudge(unsigned int axis, int value, int ms) {
  Move(axis, value);
  WaitMs(ms);
  Move(axis, 0);
  WaitMs(ms);
}

void UinputPad::NudgeHat(int hat, int angle, int ms) {
  TurnHat(hat, angle);
  WaitMs(ms);
  TurnHat(hat, -1);
  WaitMs(ms);
}

UhidPad::UhidPad(const std::string& name, const std::string& serial, std::uint16_t bus) {
  fd = open("/dev/uhid", O_RDWR | O_CLOEXEC);
  if (fd < 0) {
    Fail("/dev/uhid", errno);
  }
  uhid_event event = {};
  event.type = UHID_CREATE2;
  name.copy(reinterpret_cast<char*>(event.u.create2.name), sizeof event.u.create2.name - 1);
  serial.copy(reinterpret_cast<char*>(event.u.create2.uniq), sizeof event.u.create2.uniq - 1);
  std::string("usb-test-1/input0")
      .copy(reinterpret_cast<char*>(event.u.create2.phys), sizeof event.u.create2.phys - 1);
  event.u.create2.rd_size = sizeof kGamePadDescriptor;
  event.u.create2.bus = bus;
  event.u.create2.vendor = 0x1209;
  event.u.create2.product = 0x0002;
  event.u.create2.version = 1;
  std::memcpy(event.u.create2.rd_data, kGamePadDescriptor, sizeof kGamePadDescriptor);
  if (write(fd, &event, sizeof event) != static_cast<ssize_t>(sizeof event)) {
    Fail("a pad through uhid", errno);
  }
  const bool made = Eventually(
      [&] {
        node = FindInput(
            [&](const InputNode& input) { return input.name == name && input.uniq == serial; });
        return !node.empty();
      },
      3000);
  if (!made) {
    Fail("no input device of the pad through uhid", ENODEV);
  }
  WaitForUdev(node);
  Report(0);  // the kernel takes every axis for 0 until the device says otherwise
}

UhidPad::~UhidPad() {
  uhid_event event = {};
  event.type = UHID_DESTROY;
  if (write(fd, &event, sizeof event) != static_cast<ssize_t>(sizeof event)) {
    std::perror("UHID_DESTROY");
  }
  close(fd);
}

void UhidPad::Report(std::uint16_t buttons, std::array<std::uint8_t, 4> axes, std::uint8_t hat) {
  uhid_event event = {};
  event.type = UHID_INPUT2;
  event.u.input2.size = 7;
  event.u.input2.data[0] = static_cast<std::uint8_t>(buttons & 0xFF);
  event.u.input2.data[1] = static_cast<std::uint8_t>(buttons >> 8);
  std::copy(axes.begin(), axes.end(), &event.u.input2.data[2]);
  event.u.input2.data[6] = hat;
  if (write(fd, &event, sizeof event) != static_cast<ssize_t>(sizeof event)) {
    Fail("a report of a pad", errno);
  }
}

}  // namespace kelvaro::kernel
