#include "app/platform/linux/virtual_pad.h"

#include <errno.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "app/platform/linux/descriptor.h"

namespace platform {
namespace {

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

std::unique_ptr<VirtualPad> VirtualPad::Open(const VirtualPadShape& shape, int* errorCode) {
  const DeviceFacts facts = FactsOf(shape);
  UinputDevice device = MakeUinput(
      shape.name, UinputProduct::Pad, [&](libevdev* model) { return Enable(model, facts); },
      errorCode);
  if (!device) return nullptr;
  return std::unique_ptr<VirtualPad>(new VirtualPad(facts, std::move(device)));
}

VirtualPad::VirtualPad(const DeviceFacts& facts, UinputDevice made)
    : layout(LayOut(facts)), device(std::move(made)) {}

std::vector<input_event> VirtualPad::ReportOf(const DIJOYSTATE2& state) const {
  std::vector<input_event> events;
  const auto put = [&](unsigned type, unsigned code, std::int32_t value) {
    input_event event{};  // the kernel fills in the time
    event.type = static_cast<std::uint16_t>(type);
    event.code = static_cast<std::uint16_t>(code);
    event.value = value;
    events.push_back(event);
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
  return events;
}

bool VirtualPad::Send(const std::vector<input_event>& report, int* errorCode) {
  const std::size_t size = report.size() * sizeof report[0];
  const ssize_t written =
      Retry([&] { return write(libevdev_uinput_get_fd(device.get()), report.data(), size); });
  *errorCode = written < 0 ? errno : EIO;
  return written == static_cast<ssize_t>(size);
}

}  // namespace platform
