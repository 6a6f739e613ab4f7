#include "engine/control.h"

#include "device/device_manager.h"

namespace kelvaro {

bool InputAction::Replay(std::uint8_t, std::uint32_t, std::uint32_t) { return false; }

bool InputAction::Release() { return false; }

void InputAction::CopyType(const InputAction& other) { actionType = other.actionType; }

void InputAction::Clear() {}

InputAction* InputAction::Clone() const { return nullptr; }

void Trigger::ResetTrigger() { *this = Trigger(); }

void Trigger::SetButtonMask(std::uint64_t mask) {
  buttonMask = mask;
  buttonCount = CountButtons(mask);
}

std::uint32_t Trigger::Weight() const {
  return buttonCount + static_cast<std::uint32_t>(triggerItems.count);
}

Control::Control(const Control& source) : ControlSettings(source), actions(source.actions) {}

Control::~Control() { ClearActions(); }

void Control::Reset() {
  static const ControlSettings kDefaults;
  ClearActions();
  ControlSettings::operator=(kDefaults);
}

void Control::ClearActions() {
  if (!actionsBorrowed) {
    for (InputAction* action : actions) delete action;
  }
  actions.Clear();
}

void Control::CopyDeep(const Control& source) {
  ClearActions();
  ControlSettings::operator=(source);
  repeatStarted = 0;
  repeatLastTick = 0;
  for (const InputAction* action : source.actions) {
    if (action->actionType != InputAction::kKeyAction) continue;
    InputAction* copy = action->Clone();
    if (copy && !actions.AddTail(copy)) delete copy;
  }
  actionsBorrowed = 0;
}

void Control::CopyShared(const Control& source) {
  ClearActions();
  ControlSettings::operator=(source);
  actions = source.actions;
  actionsBorrowed = 0;
}

void Control::Borrow(const Control& source) {
  CopyShared(source);
  actionsBorrowed = 1;
}

bool Control::EvaluateTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot) {
  return EvaluateTrigger(device.axisMax, snapshot);
}

bool Control::EvaluateTrigger(std::int32_t axisMax, const DeviceSnapshot& snapshot) {
  bool satisfied = false;
  if (buttonMask != 0) {
    const std::uint64_t held = snapshot.dispatchButtons;
    if (held == 0) {
      // A release waits until everything is let go, and only an armed Trigger waits.
      if (triggerArmed == 0) {
        triggerSpoiled = 0;
        return false;
      }
      satisfied = true;
    } else if ((held & buttonMask) == buttonMask) {
      satisfied = true;
    } else {
      if (activateOnPress == 0 && (held & ~buttonMask) != 0) triggerSpoiled = 1;
      return false;
    }
  }

  for (const TriggerItem& item : triggerItems) {
    const auto wanted = static_cast<std::uint8_t>(item.value);
    if (item.kind <= input_kind::kSliderB) {
      const std::uint8_t side = AxisState(axisMax, snapshot.state, item.kind, item.index);
      if (side == AxisCentre ? triggerArmed != 1 : side != wanted) return false;
      satisfied = true;
    } else if (item.kind == input_kind::kPov) {
      // A file may name a hat that no device has; it rests for ever.
      const std::uint8_t directions = item.index < kHats ? snapshot.povDirections[item.index] : 0;
      if (directions == 0 ? triggerArmed != 1 : (directions & wanted) == 0) return false;
      satisfied = true;
    } else {
      satisfied = false;
    }
  }

  if (!satisfied) return false;
  if (activateOnPress != 0) return true;
  if (triggerArmed == 0) {
    triggerArmed = 1;
    return false;
  }
  triggerArmed = 0;
  if (triggerSpoiled == 1) {
    triggerSpoiled = 0;
    return false;
  }
  return true;
}

bool Control::UsesInput(const TriggerItem& item) const {
  for (const TriggerItem& own : triggerItems) {
    if (own.SameInput(item)) return true;
  }
  return false;
}

}  // namespace kelvaro
