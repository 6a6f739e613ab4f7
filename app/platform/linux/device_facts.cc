#include "app/platform/linux/device_facts.h"

#include <libevdev/libevdev.h>

#include <algorithm>

#include "app/platform/linux/uinput_input.h"

namespace platform {
namespace {

template <std::size_t kSize>
bool HasAny(const std::bitset<kSize>& bits, unsigned first, unsigned last) {
  for (unsigned code = first; code <= last; ++code)
    if (bits[code]) return true;
  return false;
}

bool IsMouse(const DeviceFacts& facts) {
  return facts.keys[BTN_LEFT] && facts.relative[REL_X] && facts.relative[REL_Y];
}

// Pads, screens and tablets that are touched or written on.
bool IsTouched(const DeviceFacts& facts) {
  for (const unsigned property : {INPUT_PROP_POINTER, INPUT_PROP_DIRECT, INPUT_PROP_BUTTONPAD,
                                  INPUT_PROP_SEMI_MT, INPUT_PROP_TOPBUTTONPAD})
    if (facts.properties[property]) return true;
  for (const unsigned code : {BTN_TOUCH, BTN_TOOL_PEN, BTN_TOOL_FINGER, BTN_STYLUS})
    if (facts.keys[code]) return true;
  return false;
}

bool HasAnyAxis(const DeviceFacts& facts, unsigned first, unsigned last) {
  for (unsigned code = first; code <= last; ++code)
    if (facts.HasAxis(code)) return true;
  return false;
}

// Start and Select alone don't count: the kernel gives these names to some keys of keyboards and
// knobs.
bool HasGameButtons(const DeviceFacts& facts) {
  std::bitset<KEY_CNT> keys = facts.keys;
  keys.reset(BTN_SELECT).reset(BTN_START);
  return HasAny(keys, BTN_JOYSTICK, BTN_DIGI - 1) || HasAny(keys, BTN_DPAD_UP, BTN_DPAD_RIGHT) ||
         HasAny(keys, BTN_TRIGGER_HAPPY1, BTN_TRIGGER_HAPPY40);
}

bool HasStick(const DeviceFacts& facts) { return facts.HasAxis(ABS_X) && facts.HasAxis(ABS_Y); }

// Letters alone don't decide: a pad types as well if its paddles can be set to keys, and a keyboard
// may name pad buttons for no reason. Only the pad has something to steer with.
bool IsKeyboard(const DeviceFacts& facts) {
  return HasLetters(facts) && !(HasGameButtons(facts) && HasStick(facts));
}

// For the volume and the like: keys of a remote, or a dial, or one wheel and nothing else.
bool IsKnob(const DeviceFacts& facts) {
  for (const unsigned code :
       {KEY_MUTE, KEY_VOLUMEDOWN, KEY_VOLUMEUP, KEY_PLAYPAUSE, KEY_SLEEP, KEY_WAKEUP})
    if (facts.keys[code]) return true;
  if (facts.relative[REL_DIAL]) return true;
  const bool turns = facts.HasAxis(ABS_WHEEL) || facts.HasAxis(ABS_RUDDER);
  return turns && facts.keys.none() &&
         std::count_if(facts.axes.begin(), facts.axes.end(),
                       [](const AxisFacts& axis) { return axis.present; }) == 1;
}

// Turning axes alone that swing about zero; those of pedals go one way.
bool IsTiltSensor(const DeviceFacts& facts) {
  if (facts.keys.any() || HasAnyAxis(facts, ABS_X, ABS_Z)) return false;
  for (const unsigned code : {ABS_RX, ABS_RY, ABS_RZ})
    if (facts.HasAxis(code) && facts.axes[code].minimum >= 0) return false;
  return true;
}

// Axes that only sticks, wheels and pedals have, or a pair that moves without being a pointer's. A
// hat alone doesn't count: system controls of keyboards have one.
bool HasGameAxes(const DeviceFacts& facts) {
  if (IsKnob(facts)) return false;
  if (HasAnyAxis(facts, ABS_THROTTLE, ABS_BRAKE)) return true;
  if (HasAnyAxis(facts, ABS_RX, ABS_RZ) && !IsTiltSensor(facts)) return true;
  if (!HasStick(facts) || facts.keys[BTN_LEFT] || facts.HasAxis(ABS_MT_POSITION_X)) return false;
  // No button at all: pedals where it is plugged in, a drop sensor where it is built into the
  // machine.
  const bool pluggedIn = facts.ids.bus == BUS_USB || facts.ids.bus == BUS_BLUETOOTH;
  return pluggedIn || facts.keys.any();
}

}  // namespace

DeviceFacts FactsOf(const libevdev* device) {
  const auto text = [](const char* from) { return std::string(from ? from : ""); };
  DeviceFacts facts;
  facts.ids.name = text(libevdev_get_name(device));
  facts.ids.bus = static_cast<std::uint16_t>(libevdev_get_id_bustype(device));
  facts.ids.vendor = static_cast<std::uint16_t>(libevdev_get_id_vendor(device));
  facts.ids.product = static_cast<std::uint16_t>(libevdev_get_id_product(device));
  facts.ids.version = static_cast<std::uint16_t>(libevdev_get_id_version(device));
  facts.ids.unique = text(libevdev_get_uniq(device));
  facts.ids.physical = text(libevdev_get_phys(device));
  for (unsigned code = 0; code < KEY_CNT; ++code) {
    if (!libevdev_has_event_code(device, EV_KEY, code)) continue;
    facts.keys[code] = true;
    facts.keysDown[code] = libevdev_get_event_value(device, EV_KEY, code) != 0;
  }
  for (unsigned code = 0; code < REL_CNT; ++code)
    facts.relative[code] = libevdev_has_event_code(device, EV_REL, code) != 0;
  for (unsigned property = 0; property < INPUT_PROP_CNT; ++property)
    facts.properties[property] = libevdev_has_property(device, property) != 0;
  for (unsigned code = 0; code < ABS_CNT; ++code)
    if (const input_absinfo* axis = libevdev_get_abs_info(device, code))
      facts.axes[code] = {true, axis->minimum, axis->maximum, axis->value};
  return facts;
}

bool HasLetters(const DeviceFacts& facts) {
  constexpr unsigned kRows[][2] = {{KEY_Q, KEY_P}, {KEY_A, KEY_L}, {KEY_Z, KEY_M}};
  int letters = 0;
  for (const auto& row : kRows)
    for (unsigned code = row[0]; code <= row[1]; ++code) letters += facts.keys[code];
  return letters >= 20;
}

bool IsGameDevice(const DeviceFacts& facts) {
  for (const char* own : {kKeyboardName, kMouseName, kMeasuredKeysName})
    if (facts.ids.name == own) return false;
  if (facts.properties[INPUT_PROP_ACCELEROMETER]) return false;
  if (IsKeyboard(facts) || IsMouse(facts) || IsTouched(facts)) return false;
  return HasGameButtons(facts) || HasGameAxes(facts);
}

bool IsMirror(const DeviceIds& ids) {
  constexpr std::uint16_t kLaunchersVendor = 0x28de;
  constexpr std::uint16_t kLaunchersPad = 0x11ff;
  return ids.bus == BUS_VIRTUAL || (ids.vendor == kLaunchersVendor && ids.product == kLaunchersPad);
}

}  // namespace platform
