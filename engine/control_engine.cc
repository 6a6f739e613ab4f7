#include "engine/control_engine.h"

#include <algorithm>

#include "app/platform/input.h"
#include "engine/mouse_emulation.h"

namespace kelvaro {
namespace {

constexpr std::int32_t kSliderEnd = 50;

// A slider has no position that makes the pointer stand still: the factor starts at 2.
constexpr std::int32_t kFactorOffset = 2;

}  // namespace

ControlEngine::ControlEngine(Profile& profile, DeviceManager& device, EngineHost& host)
    : profile(profile), device(device), host(host) {
  ApplyMouseSettings();
}

void ControlEngine::Attach() {
  ended = false;
  device.SetChangeCallback(&ControlDispatcher, this);
  device.SetPollCallback(&MouseStep, this);
  device.EnableChangeCallback();
  device.EnablePollCallback();
}

void ControlEngine::ApplyMouseSlider(std::uint32_t sliderId, std::int32_t position) {
  position = std::clamp(position, std::int32_t{0}, kSliderEnd);
  switch (sliderId) {
    case kMovementSensitivitySlider:
      profile.movementSensitivity = position;
      movementFactor = position + kFactorOffset;
      break;
    case kMovementDamperSlider:
      profile.movementDamper = position;
      movementDeadZone = MouseDeadZone(position, device.axisMax);
      break;
    case kWheelDamperSlider:
      profile.wheelDamper = position;
      wheelDeadZone = MouseDeadZone(position, device.axisMax);
      break;
    case kWheelSensitivitySlider:
      profile.wheelSensitivity = position;
      wheelFactor = position + kFactorOffset;
      break;
    default:
      break;
  }
}

void ControlEngine::ApplyMouseSettings() {
  ApplyMouseSlider(kMovementDamperSlider, profile.movementDamper);
  ApplyMouseSlider(kMovementSensitivitySlider, profile.movementSensitivity);
  ApplyMouseSlider(kWheelDamperSlider, profile.wheelDamper);
  ApplyMouseSlider(kWheelSensitivitySlider, profile.wheelSensitivity);
}

bool ControlEngine::MouseIsOn() const {
  return mouseActive || profile.mouseAlwaysActive || mouseTestMode;
}

void ControlEngine::LetGo() {
  LockGuard noStep(device.deviceLock);
  ended = true;
  EndControls();
  LiftMouseButtons();
}

void ControlEngine::LetGoWithoutDevice() {
  EndControls();
  if (MouseIsOn()) LiftMouseButtons();
}

void ControlEngine::EndControls() {
  LockGuard guard(profile.profileLock);
  repeatWorker.Clear();
  for (auto* node = profile.DispatchList.head; node; node = node->next) {
    if (node->value->triggerDown) EndControl(node->value);
  }
}

void ControlEngine::LiftMouseButtons() {
  LockGuard guard(mouseLock);
  const struct {
    bool& down;
    std::uint32_t up;
  } buttons[] = {{leftDown, platform::MOUSEEVENTF_LEFTUP},
                 {middleDown, platform::MOUSEEVENTF_MIDDLEUP},
                 {rightDown, platform::MOUSEEVENTF_RIGHTUP}};
  std::uint32_t flags = 0;
  for (const auto& button : buttons) {
    if (button.down) flags |= button.up;
    button.down = false;
  }
  if (flags != 0) platform::mouse_event(flags, 0, 0, 0, 0);
}

}  // namespace kelvaro
