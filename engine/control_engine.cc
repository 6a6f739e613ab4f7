#include "engine/control_engine.h"

#include <algorithm>

#include "engine/mouse_emulation.h"

namespace kelvaro {
namespace {

constexpr struct {
  Relaxed<std::int32_t> MouseSettings::*position;
  Relaxed<std::int32_t> ControlEngine::*derived;
  std::uint32_t id;
  bool isDamper;
} kSliders[] = {
    {&MouseSettings::movementDamper, &ControlEngine::movementDeadZone,
     ControlEngine::kMovementDamperSlider, true},
    {&MouseSettings::movementSensitivity, &ControlEngine::movementFactor,
     ControlEngine::kMovementSensitivitySlider, false},
    {&MouseSettings::wheelDamper, &ControlEngine::wheelDeadZone, ControlEngine::kWheelDamperSlider,
     true},
    {&MouseSettings::wheelSensitivity, &ControlEngine::wheelFactor,
     ControlEngine::kWheelSensitivitySlider, false},
};

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

void ControlEngine::SetObserver(DispatchObserver* listener) {
  observer = listener;
  repeatWorker.observer = listener;
}

void ControlEngine::ApplyMouseSlider(std::uint32_t sliderId, std::int32_t position) {
  position = std::clamp(position, std::int32_t{0}, kMouseSliderEnd);
  for (const auto& slider : kSliders) {
    if (slider.id != sliderId) continue;
    profile.*slider.position = position;
    this->*slider.derived =
        slider.isDamper ? MouseDeadZone(position, device.axisMax) : MouseFactor(position);
  }
  MouseChanged();
}

void ControlEngine::ApplyMouseSettings() {
  for (const auto& slider : kSliders) ApplyMouseSlider(slider.id, profile.*slider.position);
}

void ControlEngine::SetTestMode(bool on) {
  {
    LockGuard guard(mouseLock);
    testMode = on;
  }
  MouseChanged();
}

bool ControlEngine::MouseIsOn() const {
  return mouseActive || profile.mouseAlwaysActive || testMode;
}

void ControlEngine::LetGo() {
  LockGuard noStep(device.deviceLock);
  ended = true;
  EndControls(Control::kUp);
  LiftMouseButtons();
}

void ControlEngine::ReleaseAll() {
  LockGuard noStep(device.deviceLock);
  EndControls(Control::kDownButLetGo);
  LiftMouseButtons();
}

void ControlEngine::Pause() {
  paused = true;
  LockGuard noStep(device.deviceLock);
  EndControls(Control::kUp);
  LiftMouseButtons();
}

void ControlEngine::Resume() {
  LockGuard noStep(device.deviceLock);
  if (!paused) return;
  {
    LockGuard guard(profile.profileLock);
    for (Control& control : profile.DispatchList) {
      control.triggerArmed = 0;
      control.triggerSpoiled = 0;
    }
  }
  snapshot = DeviceSnapshot();
  paused = false;
  device.DeliverAnew();
}

void ControlEngine::LetGoWithoutDevice() {
  EndControls(Control::kUp);
  if (MouseIsOn()) LiftMouseButtons();
}

void ControlEngine::EndControls(std::uint8_t triggerDown) {
  LockGuard guard(profile.profileLock);
  repeatWorker.Clear();
  for (Control& control : profile.DispatchList) {
    if (!control.triggerDown) continue;
    EndControl(&control);
    control.triggerDown = triggerDown;
  }
}

}  // namespace kelvaro
