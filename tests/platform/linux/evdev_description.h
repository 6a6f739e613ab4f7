// Describes a device with libevdev, without there being one.
#pragma once

#include <libevdev/libevdev.h>

#include <initializer_list>
#include <string>

#include "app/platform/linux/device_facts.h"

namespace platform {

class EvdevDescription {
 public:
  explicit EvdevDescription(const std::string& name = "Test Pad") : device(libevdev_new()) {
    libevdev_set_name(device, name.c_str());
    libevdev_set_id_bustype(device, BUS_USB);
  }
  ~EvdevDescription() { libevdev_free(device); }
  EvdevDescription(const EvdevDescription&) = delete;
  EvdevDescription& operator=(const EvdevDescription&) = delete;

  EvdevDescription& Keys(unsigned first, unsigned last) {
    for (unsigned code = first; code <= last; ++code)
      libevdev_enable_event_code(device, EV_KEY, code, nullptr);
    return *this;
  }
  EvdevDescription& Keys(std::initializer_list<unsigned> codes) {
    for (const unsigned code : codes) Keys(code, code);
    return *this;
  }
  EvdevDescription& Axis(unsigned code, int minimum, int maximum, int value = 0) {
    input_absinfo info{};
    info.minimum = minimum;
    info.maximum = maximum;
    info.value = value;
    libevdev_enable_event_code(device, EV_ABS, code, &info);
    return *this;
  }
  EvdevDescription& Axes(std::initializer_list<unsigned> codes) {
    for (const unsigned code : codes) Axis(code, -32768, 32767);
    return *this;
  }
  EvdevDescription& Relative(std::initializer_list<unsigned> codes) {
    for (const unsigned code : codes) libevdev_enable_event_code(device, EV_REL, code, nullptr);
    return *this;
  }
  EvdevDescription& Property(unsigned property) {
    libevdev_enable_property(device, property);
    return *this;
  }
  EvdevDescription& Down(unsigned code) {
    libevdev_set_event_value(device, EV_KEY, code, 1);
    return *this;
  }
  EvdevDescription& Bus(int bus) {
    libevdev_set_id_bustype(device, bus);
    return *this;
  }
  EvdevDescription& Ids(int vendor, int product, int version) {
    libevdev_set_id_vendor(device, vendor);
    libevdev_set_id_product(device, product);
    libevdev_set_id_version(device, version);
    return *this;
  }
  EvdevDescription& Unique(const char* text) {
    libevdev_set_uniq(device, text);
    return *this;
  }
  EvdevDescription& Physical(const char* text) {
    libevdev_set_phys(device, text);
    return *this;
  }

  DeviceFacts Facts() const { return FactsOf(device); }
  const libevdev* Device() const { return device; }

 private:
  libevdev* const device;
};

}  // namespace platform
