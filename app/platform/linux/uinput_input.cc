#include "app/platform/linux/uinput_input.h"

#include <errno.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <utility>

#include "app/platform/linux/key_map.h"

namespace platform {
namespace {

// Stands in for a maker's number; what counts is that desktops treat a USB device as hardware.
constexpr int kVendor = 0x4B56;
constexpr int kKeyboardProduct = 1;
constexpr int kMouseProduct = 2;
constexpr int kVersion = 1;

bool Describe(libevdev* device, bool isKeyboard) {
  libevdev_set_name(device, isKeyboard ? kKeyboardName : kMouseName);
  libevdev_set_id_bustype(device, BUS_USB);
  libevdev_set_id_vendor(device, kVendor);
  libevdev_set_id_product(device, isKeyboard ? kKeyboardProduct : kMouseProduct);
  libevdev_set_id_version(device, kVersion);
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

std::string NodeOf(libevdev_uinput* device) {
  const char* node = libevdev_uinput_get_devnode(device);
  return node ? node : "";
}

}  // namespace

void UinputInput::Destroy::operator()(libevdev_uinput* device) const {
  libevdev_uinput_destroy(device);
}

UinputInput::Device UinputInput::Create(bool isKeyboard, int* errorCode) {
  libevdev* description = libevdev_new();
  if (!description) {
    *errorCode = ENOMEM;
    return nullptr;
  }
  libevdev_uinput* device = nullptr;
  const int result =
      Describe(description, isKeyboard)
          ? libevdev_uinput_create_from_device(description, LIBEVDEV_UINPUT_OPEN_MANAGED, &device)
          : -EINVAL;
  libevdev_free(description);
  if (result != 0) {
    *errorCode = -result;
    return nullptr;
  }
  return Device(device);
}

std::unique_ptr<UinputInput> UinputInput::Open(int* errorCode) {
  Device keyboard = Create(true, errorCode);
  if (!keyboard) return nullptr;
  Device mouse = Create(false, errorCode);
  if (!mouse) return nullptr;
  return std::unique_ptr<UinputInput>(new UinputInput(std::move(keyboard), std::move(mouse)));
}

UinputInput::UinputInput(Device keyboardDevice, Device mouseDevice)
    : KernelEvents(libevdev_uinput_get_fd(keyboardDevice.get()),
                   libevdev_uinput_get_fd(mouseDevice.get())),
      keyboard(std::move(keyboardDevice)),
      mouse(std::move(mouseDevice)) {}

std::string UinputInput::KeyboardNode() const { return NodeOf(keyboard.get()); }

std::string UinputInput::MouseNode() const { return NodeOf(mouse.get()); }

}  // namespace platform
