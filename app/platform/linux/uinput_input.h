// The virtual keyboard and mouse of the kernel's. They are there for the life of the object; when
// it goes, or the process ends in whatever way, the kernel lets go of all that is held on them.
#pragma once

#include <memory>

#include "app/platform/linux/kernel_events.h"
#include "app/platform/linux/uinput_device.h"

namespace platform {

constexpr char kKeyboardName[] = "Kelvaro Keyboard";
constexpr char kMouseName[] = "Kelvaro Mouse";
// Takes the keys of a measurement in place of the keyboard; see console/latency_command.cc.
constexpr char kMeasuredKeysName[] = "Kelvaro Measured Keys";

class UinputInput : public KernelEvents {
 public:
  // Null on failure, with the errno value in *errorCode.
  static std::unique_ptr<UinputInput> Open(int* errorCode);

  // Where the devices show up, such as "/dev/input/event7"; empty if that can't be told.
  std::string KeyboardNode() const;
  std::string MouseNode() const;

 private:
  UinputInput(UinputDevice keyboard, UinputDevice mouse);

  const UinputDevice keyboard;
  const UinputDevice mouse;
};

}  // namespace platform
