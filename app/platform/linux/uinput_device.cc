#include "app/platform/linux/uinput_device.h"

#include <errno.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

namespace platform {
namespace {

// Stands in for a maker's number. On the USB bus, since desktops treat such a device as hardware,
// and since axes alone are a pad's only where they are plugged in.
constexpr int kVendor = 0x4B56;
constexpr int kVersion = 1;

}  // namespace

void DestroyUinput::operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }

UinputDevice MakeUinput(const std::string& name, UinputProduct product,
                        const std::function<bool(libevdev*)>& describe, int* errorCode) {
  libevdev* description = libevdev_new();
  if (!description) {
    *errorCode = ENOMEM;
    return nullptr;
  }
  libevdev_set_name(description, name.c_str());
  libevdev_set_id_bustype(description, BUS_USB);
  libevdev_set_id_vendor(description, kVendor);
  libevdev_set_id_product(description, static_cast<int>(product));
  libevdev_set_id_version(description, kVersion);
  libevdev_uinput* device = nullptr;
  const int result = describe(description) ? libevdev_uinput_create_from_device(
                                                 description, LIBEVDEV_UINPUT_OPEN_MANAGED, &device)
                                           : -EINVAL;
  libevdev_free(description);
  if (result == 0) return UinputDevice(device);
  *errorCode = -result;
  return nullptr;
}

std::string NodeOf(const UinputDevice& device) {
  const char* node = libevdev_uinput_get_devnode(device.get());
  return node ? node : "";
}

}  // namespace platform
