#include "app/platform/linux/virtual_pad.h"

#include <errno.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <algorithm>

namespace platform {
namespace {

// Stands in for a maker's number, beside those of the keyboard and the mouse. On the USB bus, since
// axes alone are a pad's only where they are plugged in.
constexpr int kVendor = 0x4B56;
constexpr int kProduct = 3;
constexpr int kVersion = 1;

// First what an ordinary pad has, then whatever the kernel has names for.
constexpr unsigned kPadButtons[] = {BTN_SOUTH,  BTN_EAST,  BTN_NORTH, BTN_WEST,   BTN_TL,    BTN_TR,
                                    BTN_SELECT, BTN_START, BTN_MODE,  BTN_THUMBL, BTN_THUMBR};
constexpr unsigned kMoreButtons[][2] = {{BTN_TRIGGER_HAPPY, BTN_TRIGGER_HAPPY + 63},
                                        {BTN_GAMEPAD, BTN_GAMEPAD + 15},
                                        {BTN_JOYSTICK, BTN_JOYSTICK + 15},
                                        {BTN_MISC, BTN_MISC + 15},
                                        {BTN_WHEEL, BTN_WHEEL + 15}};

constexpr unsigned kAxisCodes[kAxisSlots] = {ABS_X,  ABS_Y,  ABS_Z,        ABS_RX,
                                             ABS_RY, ABS_RZ, ABS_THROTTLE, ABS_GAS};

void AddButtons(std::uint32_t count, std::bitset<KEY_CNT>* keys) {
  const auto add = [&](unsigned code) {
    if (keys->count() < count) keys->set(code);
  };
  for (const unsigned code : kPadButtons) add(code);
  for (const auto& [first, last] : kMoreButtons)
    for (unsigned code = first; code <= last; ++code) add(code);
}

bool Enable(libevdev* model, const DeviceFacts& facts) {
  bool fine = true;
  for (unsigned code = 0; code < KEY_CNT; ++code)
    if (facts.keys[code])
      fine = libevdev_enable_event_code(model, EV_KEY, code, nullptr) == 0 && fine;
  for (unsigned code = 0; code < ABS_CNT; ++code) {
    const AxisFacts& axis = facts.axes[code];
    if (!axis.present) continue;
    input_absinfo range{};
    range.minimum = axis.minimum;
    range.maximum = axis.maximum;
    fine = libevdev_enable_event_code(model, EV_ABS, code, &range) == 0 && fine;
  }
  return fine;
}

// -1 for left, 1 for right.
std::int32_t Right(std::uint32_t angle) {
  if (angle >= 36000 || angle % 18000 == 0) return 0;
  return angle < 18000 ? 1 : -1;
}
std::int32_t Down(std::uint32_t angle) {
  return angle >= 36000 ? 0 : Right((angle + 27000) % 36000);
}

}  // namespace

DeviceFacts FactsOf(const VirtualPadShape& shape) {
  DeviceFacts facts;
  facts.ids.name = shape.name;
  facts.ids.bus = BUS_USB;
  facts.ids.vendor = kVendor;
  facts.ids.product = kProduct;
  facts.ids.version = kVersion;
  AddButtons(shape.buttons, &facts.keys);
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot) {
    const bool bringsAlong = slot == kFirstSliderSlot && shape.axes[kFirstSliderSlot + 1];
    if (shape.axes[slot] || bringsAlong)
      facts.axes[kAxisCodes[slot]] = {true, -VirtualPad::kAxisEnd, VirtualPad::kAxisEnd, 0};
  }
  for (unsigned axis = 0; axis < 2 * std::min(shape.hats, kHatSlots); ++axis)
    facts.axes[ABS_HAT0X + axis] = {true, -1, 1, 0};
  return facts;
}

void VirtualPad::Destroy::operator()(libevdev_uinput* made) const { libevdev_uinput_destroy(made); }

std::unique_ptr<VirtualPad> VirtualPad::Open(const VirtualPadShape& shape, int* errorCode) {
  const DeviceFacts facts = FactsOf(shape);
  libevdev* model = libevdev_new();
  if (!model) {
    *errorCode = ENOMEM;
    return nullptr;
  }
  libevdev_set_name(model, facts.ids.name.c_str());
  libevdev_set_id_bustype(model, facts.ids.bus);
  libevdev_set_id_vendor(model, facts.ids.vendor);
  libevdev_set_id_product(model, facts.ids.product);
  libevdev_set_id_version(model, facts.ids.version);
  libevdev_uinput* device = nullptr;
  const int result = Enable(model, facts) ? libevdev_uinput_create_from_device(
                                                model, LIBEVDEV_UINPUT_OPEN_MANAGED, &device)
                                          : -EINVAL;
  libevdev_free(model);
  if (result != 0) {
    *errorCode = -result;
    return nullptr;
  }
  return std::unique_ptr<VirtualPad>(new VirtualPad(facts, device));
}

VirtualPad::VirtualPad(const DeviceFacts& facts, libevdev_uinput* made)
    : layout(LayOut(facts)), device(made) {}

bool VirtualPad::Send(const DIJOYSTATE2& state, int* errorCode) {
  // The kernel drops what changes nothing.
  int result = 0;
  const auto put = [&](unsigned type, unsigned code, std::int32_t value) {
    if (result == 0) result = libevdev_uinput_write_event(device.get(), type, code, value);
  };
  for (unsigned code = 0; code < KEY_CNT; ++code)
    if (layout.buttonSlot[code] != kNoSlot)
      put(EV_KEY, code, state.rgbButtons[layout.buttonSlot[code]] != 0 ? 1 : 0);
  DIJOYSTATE2 copy = state;
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot)
    if (layout.axisCode[slot] >= 0)
      put(EV_ABS, static_cast<unsigned>(layout.axisCode[slot]),
          std::clamp(AxisSlot(copy, slot), -kAxisEnd, kAxisEnd));
  for (std::uint32_t hat = 0; hat < layout.hats; ++hat) {
    const auto x = static_cast<unsigned>(layout.hatCode[hat]);
    put(EV_ABS, x, Right(state.rgdwPOV[hat]));
    put(EV_ABS, x + 1, Down(state.rgdwPOV[hat]));
  }
  put(EV_SYN, SYN_REPORT, 0);
  *errorCode = -result;
  return result == 0;
}

std::string VirtualPad::Node() const {
  const char* node = libevdev_uinput_get_devnode(device.get());
  return node ? node : "";
}

}  // namespace platform
