#include "app/platform/linux/uinput_input.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <utility>

#include "app/platform/linux/key_map.h"

namespace platform {
namespace {

bool Enable(libevdev* device, bool isKeyboard) {
  bool fine = true;
  const auto enable = [&](unsigned type, unsigned code) {
    fine = libevdev_enable_event_code(device, type, code, nullptr) == 0 && fine;
  };
  if (isKeyboard) {
    for (const std::uint16_t code : KernelKeyboardCodes()) enable(EV_KEY, code);
  } else {
    for (const unsigned code : {REL_X, REL_Y, REL_WHEEL, REL_WHEEL_HI_RES}) enable(EV_REL, code);
    for (const unsigned code : {BTN_LEFT, BTN_RIGHT, BTN_MIDDLE, BTN_SIDE, BTN_EXTRA})
      enable(EV_KEY, code);
  }
  return fine;
}

}  // namespace

std::unique_ptr<UinputInput> UinputInput::Open(int* errorCode) {
  UinputDevice keyboard = MakeUinput(
      kKeyboardName, UinputProduct::Keyboard, [](libevdev* device) { return Enable(device, true); },
      errorCode);
  if (!keyboard) return nullptr;
  UinputDevice mouse = MakeUinput(
      kMouseName, UinputProduct::Mouse, [](libevdev* device) { return Enable(device, false); },
      errorCode);
  if (!mouse) return nullptr;
  return std::unique_ptr<UinputInput>(new UinputInput(std::move(keyboard), std::move(mouse)));
}

UinputInput::UinputInput(UinputDevice keyboardDevice, UinputDevice mouseDevice)
    : KernelEvents(libevdev_uinput_get_fd(keyboardDevice.get()),
                   libevdev_uinput_get_fd(mouseDevice.get())),
      keyboard(std::move(keyboardDevice)),
      mouse(std::move(mouseDevice)) {}

std::string UinputInput::KeyboardNode() const { return NodeOf(keyboard); }

std::string UinputInput::MouseNode() const { return NodeOf(mouse); }

}  // namespace platform
