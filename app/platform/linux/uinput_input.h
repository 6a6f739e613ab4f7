// The virtual keyboard and mouse of the kernel's. They are there for the life of the object; when
// it goes, or the process ends in whatever way, the kernel lets go of all that is held on them.
#pragma once

#include <memory>

#include "app/platform/linux/kernel_events.h"

struct libevdev_uinput;

namespace platform {

constexpr char kKeyboardName[] = "Kelvaro Keyboard";
constexpr char kMouseName[] = "Kelvaro Mouse";

class UinputInput : public KernelEvents {
 public:
  // Null on failure, with the errno value in *errorCode.
  static std::unique_ptr<UinputInput> Open(int* errorCode);

  // Where the devices show up, such as "/dev/input/event7"; empty if that can't be told.
  std::string KeyboardNode() const;
  std::string MouseNode() const;

 private:
  struct Destroy {
    void operator()(libevdev_uinput* device) const;
  };
  using Device = std::unique_ptr<libevdev_uinput, Destroy>;

  UinputInput(Device keyboard, Device mouse);
  static Device Create(bool isKeyboard, int* errorCode);

  const Device keyboard;
  const Device mouse;
};

}  // namespace platform
