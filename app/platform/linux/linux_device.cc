#include "app/platform/linux/linux_device.h"

#include <errno.h>
#include <libevdev/libevdev.h>

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr std::uint8_t kButtonDown = 0x80;

// Object ids, as published: an absolute axis, and the number of its place in the state.
constexpr std::uint32_t kAbsoluteAxis = 2;
constexpr std::uint32_t AxisId(std::uint32_t slot) { return slot << 8 | kAbsoluteAxis; }

}  // namespace

LinuxDevice::LinuxDevice(std::shared_ptr<DeviceSource> source, AttachedDevice attached)
    : itsReturn(std::move(source), attached.place, attached.identity) {
  Adopt(std::move(attached.node));
}

void LinuxDevice::Adopt(std::unique_ptr<DeviceNode> opened) {
  node = std::move(opened);
  const DeviceFacts& facts = node->Facts();
  layout = LayOut(facts);
  axes = facts.axes;
  // One that comes back may have axes that it hadn't before: they read like the others.
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot)
    if (layout.axisCode[slot] >= 0 && !ranges[slot]) ranges[slot] = newestRange;
  state = DIJOYSTATE2();
  for (unsigned code = 0; code < KEY_CNT; ++code)
    if (layout.buttonSlot[code] != kNoSlot && facts.keysDown[code])
      state.rgbButtons[layout.buttonSlot[code]] = kButtonDown;
  for (unsigned code = 0; code < ABS_CNT; ++code)
    if (axes[code].present) {
      input_event now{};
      now.type = EV_ABS;
      now.code = static_cast<std::uint16_t>(code);
      now.value = axes[code].value;
      Apply(now);
    }
  for (std::uint32_t hat = 0; hat < kHatSlots; ++hat) PutHat(hat);
  heldBack.reset();
  condition = Condition::Attached;
}

void LinuxDevice::Apply(const input_event& event) {
  if (event.type == EV_KEY && event.code < KEY_CNT) {
    const std::uint8_t slot = layout.buttonSlot[event.code];
    if (slot != kNoSlot) state.rgbButtons[slot] = event.value != 0 ? kButtonDown : 0;
  } else if (event.type == EV_ABS && event.code < ABS_CNT) {
    AxisFacts& axis = axes[event.code];
    axis.value = event.value;
    if (const std::uint8_t slot = layout.axisSlot[event.code]; slot != kNoSlot) {
      const Range& range = *ranges[slot];
      AxisSlot(state, slot) =
          ScaleAxis(axis.value, axis.minimum, axis.maximum, range.lowest, range.highest);
    } else if (const std::uint8_t hat = layout.hatSlot[event.code]; hat != kNoSlot) {
      PutHat(hat);
    }
  }
}

void LinuxDevice::PutHat(std::uint32_t hat) {
  const std::int16_t code = layout.hatCode[hat];
  if (code < 0) {
    state.rgdwPOV[hat] = kPovCentred;
    return;
  }
  const auto direction = [&](unsigned axis) {
    return layout.hatSlot[axis] == hat ? HatDirection(axes[axis], axes[axis].value) : 0;
  };
  const auto x = static_cast<unsigned>(code);
  state.rgdwPOV[hat] = HatAngle(direction(x), direction(x + 1));
}

// Nobody can say where an axis of a lost device rests. The middle triggers nothing.
void LinuxDevice::Lose() {
  itsReturn.Lost(std::move(node));
  state = DIJOYSTATE2();
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot)
    if (layout.axisCode[slot] >= 0)
      AxisSlot(state, slot) = ScaleAxis(0, 0, 0, ranges[slot]->lowest, ranges[slot]->highest);
  std::fill(std::begin(state.rgdwPOV), std::end(state.rgdwPOV), kPovCentred);
}

HRESULT LinuxDevice::SetDataFormat() { return DI_OK; }

// The kernel hands every reader its own copy of all events, whoever has the focus.
HRESULT LinuxDevice::SetCooperativeLevel(Handle /*window*/, std::uint32_t flags) {
  const bool alone = flags == (DISCL_BACKGROUND | DISCL_EXCLUSIVE);
  if (!alone && flags != (DISCL_BACKGROUND | DISCL_NONEXCLUSIVE)) return DIERR_INVALIDPARAM;
  exclusive = alone;
  return DI_OK;
}

HRESULT LinuxDevice::GetCapabilities(DIDEVCAPS* caps) {
  if (!caps || caps->dwSize != sizeof(DIDEVCAPS)) return DIERR_INVALIDPARAM;
  *caps = DIDEVCAPS();
  caps->dwAxes = layout.axes;
  caps->dwButtons = layout.buttons;
  caps->dwPOVs = layout.hats;
  return DI_OK;
}

HRESULT LinuxDevice::EnumObjects(const std::function<bool(std::uint32_t id)>& visit,
                                 std::uint32_t flags) {
  if (!visit || flags != DIDFT_AXIS) return DIERR_INVALIDPARAM;
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot)
    if (layout.axisCode[slot] >= 0 && !visit(AxisId(slot))) break;
  return DI_OK;
}

HRESULT LinuxDevice::SetProperty(std::uint32_t property, const DIPROPRANGE& range) {
  if (property != DIPROP_RANGE || range.diph.dwHow != DIPH_BYID || range.lMin > range.lMax)
    return DIERR_INVALIDPARAM;
  for (std::uint32_t slot = 0; slot < kAxisSlots; ++slot) {
    const std::int16_t code = layout.axisCode[slot];
    if (code < 0 || range.diph.dwObj != AxisId(slot)) continue;
    newestRange = {range.lMin, range.lMax};
    ranges[slot] = newestRange;
    const AxisFacts& axis = axes[static_cast<unsigned>(code)];
    AxisSlot(state, slot) =
        ScaleAxis(axis.value, axis.minimum, axis.maximum, range.lMin, range.lMax);
    return DI_OK;
  }
  return DIERR_INVALIDPARAM;
}

HRESULT LinuxDevice::Acquire() {
  if (condition == Condition::Lost) {
    std::unique_ptr<DeviceNode> found = itsReturn.Take();
    if (!found) return DIERR_INPUTLOST;
    Adopt(std::move(found));
    acquired = false;
  }
  if (acquired) return DI_NOEFFECT;
  if (const int trouble = exclusive && node ? node->Grab(true) : 0; trouble == EBUSY) {
    return DIERR_OTHERAPPHASPRIO;
  } else if (trouble != 0) {
    Lose();
    condition = Condition::Lost;
    return DIERR_INPUTLOST;
  }
  acquired = true;
  return DI_OK;
}

HRESULT LinuxDevice::Unacquire() {
  if (!acquired) return DI_NOEFFECT;
  if (exclusive && node) node->Grab(false);
  acquired = false;
  return DI_OK;
}

HRESULT LinuxDevice::Poll() {
  if (condition != Condition::Attached) {
    condition = Condition::Lost;
    return DIERR_INPUTLOST;
  }
  if (!acquired) return DIERR_NOTACQUIRED;
  changedButtons.reset();
  if (heldBack) MustWait(*heldBack);
  if (heldBack) Apply(*std::exchange(heldBack, std::nullopt));
  bool resync = false;
  for (;;) {
    input_event event;
    const int result = node->Next(resync, &event);
    if (result == LIBEVDEV_READ_STATUS_SUCCESS || result == LIBEVDEV_READ_STATUS_SYNC) {
      if (result == LIBEVDEV_READ_STATUS_SYNC) resync = true;
      if (!resync && MustWait(event)) {
        heldBack = event;
        return DI_OK;
      }
      Apply(event);
    } else if (result == -EAGAIN && resync) {
      resync = false;  // caught up; what came meanwhile is still to be read
    } else if (result == -EAGAIN) {
      return DI_OK;
    } else if (result != -EINTR) {
      Lose();
      condition = Condition::AtRest;
      return DI_OK;
    }
  }
}

bool LinuxDevice::MustWait(const input_event& event) {
  if (!tapsApart || event.type != EV_KEY || event.code >= KEY_CNT) return false;
  const std::uint8_t slot = layout.buttonSlot[event.code];
  if (slot == kNoSlot || (state.rgbButtons[slot] != 0) == (event.value != 0)) return false;
  if (changedButtons[slot]) return true;
  changedButtons.set(slot);
  return false;
}

std::optional<Handle> LinuxDevice::WaitForNews() {
  if (condition == Condition::AtRest || heldBack) return std::nullopt;
  // Nothing tells when the program that has it lets go.
  if (condition == Condition::Attached && !acquired) return std::nullopt;
  const int fd = condition == Condition::Attached ? node->Fd() : itsReturn.Fd();
  if (fd < 0) return std::nullopt;
  return fd;
}

HRESULT LinuxDevice::GetDeviceState(std::uint32_t size, DIJOYSTATE2* out) {
  if (size != sizeof(DIJOYSTATE2) || !out) return DIERR_INVALIDPARAM;
  if (condition == Condition::Lost) return DIERR_INPUTLOST;
  if (!acquired) return DIERR_NOTACQUIRED;
  *out = state;
  return DI_OK;
}

void LinuxDevice::Release() { delete this; }

}  // namespace platform
