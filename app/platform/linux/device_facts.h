// What the kernel says of one input device, as plain values, so that everything that is decided
// about a device can be tried out without one.
#pragma once

#include <linux/input.h>

#include <array>
#include <bitset>
#include <cstdint>
#include <string>

struct libevdev;

namespace platform {

// The same over the life of a device, and readable without opening it.
struct DeviceIds {
  std::string name;
  std::uint16_t bus = 0;
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  std::uint16_t version = 0;
  std::string unique;    // serial number or radio address; often empty
  std::string physical;  // the port it is plugged into; may be empty
};

struct AxisFacts {
  bool present = false;
  std::int32_t minimum = 0;
  std::int32_t maximum = 0;
  std::int32_t value = 0;
};

struct DeviceFacts {
  DeviceIds ids;
  std::bitset<KEY_CNT> keys;      // that it has
  std::bitset<KEY_CNT> keysDown;  // at this moment
  std::bitset<REL_CNT> relative;
  std::bitset<INPUT_PROP_CNT> properties;
  std::array<AxisFacts, ABS_CNT> axes;

  bool HasAxis(unsigned code) const { return axes[code].present; }
};

// As of the device's last read.
DeviceFacts FactsOf(const libevdev* device);

// A whole keyboard's: more than a pad with a few keys beside its buttons would have.
bool HasLetters(const DeviceFacts& facts);

// Whether it is a joystick, a pad, a wheel, pedals or the like. Not: keyboards and their system
// controls, mice, touch pads and screens, tablets, knobs, motion sensors (those in pads too), and
// Kelvaro's own virtual devices.
bool IsGameDevice(const DeviceFacts& facts);

// Whether a program made it, as launchers do that show games a pad of their own in place of the
// one that is held.
bool IsMirror(const DeviceIds& ids);

}  // namespace platform
