// Pads that exist only in the kernel: one made through uinput with whatever buttons, axes and hats
// a test asks for, one made through uhid from a HID report descriptor, as the kernel would make it
// from a real device. Both vanish (as if pulled out) when the object ends.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct libevdev_uinput;

namespace kelvaro::kernel {

struct PadAxis {
  unsigned int code;
  int minimum = -32000;  // the engine's own range: values then arrive as they are sent
  int maximum = 32000;
  int value = 0;
};

struct PadShape {
  std::string name = "Test Pad";
  std::string phys = "test/port0";  // what tells equal pads apart where there is no serial number
  std::uint16_t vendor = 0x1209;
  std::uint16_t product = 0x0001;
  std::uint16_t version = 1;
  std::uint16_t bus = 0x03;                // BUS_USB
  std::vector<unsigned int> buttons = {};  // codes of the kernel
  std::vector<PadAxis> axes = {};
  int hats = 0;  // 0 to 4
};

// An ordinary pad: 11 buttons, two sticks and their triggers, a hat.
PadShape OrdinaryPad(const std::string& name, const std::string& port = "test/port0");

// The button codes of an ordinary pad of `count` (up to 11) buttons, in ascending order.
std::vector<unsigned int> GamePadButtons(std::size_t count);

// 24, 40 or 128 codes, in ascending order, as sticks, panels and button boxes have them.
std::vector<unsigned int> ManyButtons(std::size_t count);

class UinputPad {
 public:
  // Exits the program with a message where /dev/uinput doesn't do its work: nothing can be tested.
  explicit UinputPad(const PadShape& shape);
  ~UinputPad();
  UinputPad(const UinputPad&) = delete;
  UinputPad& operator=(const UinputPad&) = delete;

  // Sends one event, without the sync that makes it count.
  void Put(unsigned int type, unsigned int code, int value);
  void Sync();

  // A whole report each: event and sync. `button` counts from 0 in the order of the shape; `angle`
  // is in hundredths of a degree, one of the eight that a hat has, or -1 for centred.
  void Press(std::size_t button);
  void Release(std::size_t button);
  // Down for so long, then up for 50 ms, or for as long where that is less.
  void Tap(std::size_t button, int ms = 50);
  void Move(unsigned int axis, int value);
  void TurnHat(int hat, int angle);
  // There for so long, and as long back in the middle.
  void Nudge(unsigned int axis, int value, int ms = 30);
  void NudgeHat(int hat, int angle, int ms = 30);

  // As TurnHat, Press and Release, without the sync.
  void PutHat(int hat, int angle);
  void PutButton(std::size_t button, bool down);

  // A whole report that its readers have to read and that changes nothing.
  void Stir();

  // /dev/input/event…
  const std::string& Node() const { return node; }

 private:
  std::vector<unsigned int> buttons;
  int fd = -1;
  libevdev_uinput* device = nullptr;
  std::string node;
};

// A pad with buttons 1 to 10, axes X, Y, Z and Rz of one byte each, and a hat switch.
class UhidPad {
 public:
  // Comes back once the kernel has made the input device of it. `bus` as in <linux/input.h>.
  UhidPad(const std::string& name, const std::string& serial, std::uint16_t bus = 0x03);
  ~UhidPad();
  UhidPad(const UhidPad&) = delete;
  UhidPad& operator=(const UhidPad&) = delete;

  // Bit n of `buttons` is button n+1. Axes are 0 to 255, 128 in the middle. `hat` is 0 to 7
  // clockwise from north, 8 for centred.
  void Report(std::uint16_t buttons, std::array<std::uint8_t, 4> axes = {128, 128, 128, 128},
              std::uint8_t hat = 8);

  const std::string& Node() const { return node; }

 private:
  int fd = -1;
  std::string node;
};

}  // namespace kelvaro::kernel
