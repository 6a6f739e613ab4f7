// Devices that a program makes in the kernel. Each is there for the life of its object; when that
// goes, or the process ends in whatever way, the kernel takes it away.
#pragma once

#include <functional>
#include <memory>
#include <string>

struct libevdev;
struct libevdev_uinput;

namespace platform {

struct DestroyUinput {
  void operator()(libevdev_uinput* device) const;
};
using UinputDevice = std::unique_ptr<libevdev_uinput, DestroyUinput>;

enum class UinputProduct { Keyboard = 1, Mouse = 2, Pad = 3 };

// On the USB bus, under `name`, with what `describe` enables on the description that it gets; false
// from it is EINVAL. Null on failure, with the errno value in *errorCode.
UinputDevice MakeUinput(const std::string& name, UinputProduct product,
                        const std::function<bool(libevdev*)>& describe, int* errorCode);

// Where it shows up, such as "/dev/input/event7"; empty if that can't be told.
std::string NodeOf(const UinputDevice& device);

}  // namespace platform
