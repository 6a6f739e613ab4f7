#include "console/engine_trial.h"

#include "app/platform/recording/recording.h"
#include "console/fitting_states.h"
#include "engine/precedence.h"

namespace kelvaro::console {

using platform::StateAtRest;

EngineTrial::EngineTrial(const MouseSettings& mouse) : device(platform::kNoWindow) {
  static_cast<MouseSettings&>(profile) = mouse;
  engine.Attach();
  engine.SetObserver(this);
}

void EngineTrial::Play(const std::vector<const Control*>& controls, bool mouseActive,
                       const std::vector<platform::DIJOYSTATE2>& states) {
  engine.repeatWorker.Clear();
  profile.controls.Clear();
  for (const Control* control : controls) Add(*control);
  profile.profileLock.NotNeeded();
  profile.RebuildDispatchList();
  engine.mouseActive = mouseActive;
  firings.clear();
  takenButtons = 0;
  repeatLosers.clear();
  moment = 0;
  for (const platform::DIJOYSTATE2& state : states) Dispatch(state);
  Dispatch(StateAtRest());
}

bool EngineTrial::TakenInputs(const Control& control, Trigger* taken) {
  const auto held = FindState(
      {&control}, [&](const platform::DIJOYSTATE2& state) { return IsHeld(control, state); });
  if (!held) return false;
  Play({&control}, true, {*held});
  if (!firings.empty()) return false;
  taken->SetButtonMask(takenButtons & control.buttonMask);
  for (const TriggerItem& item : control.triggerItems) {
    if (IsMouseInput(profile, item)) taken->triggerItems.AddTail(item);
  }
  return taken->Weight() > 0;
}

void EngineTrial::ControlJudged(const Control& control, Verdict verdict, const Control*) {
  const auto count = static_cast<std::uint32_t>(profile.controls.count);
  if (verdict == Verdict::Fires && control.controlId == count) firings.push_back(moment);
}

void EngineTrial::Add(const Control& source) {
  if (!profile.controls.AddTail({})) return;
  Control& control = *profile.controls.tail->value;
  control.CopyTrigger(source);
  control.repeatEnabled = source.repeatEnabled;
  control.controlId = static_cast<std::uint32_t>(profile.controls.count);
}

void EngineTrial::Dispatch(const platform::DIJOYSTATE2& state) {
  LockGuard guard(device.deviceLock);
  ControlDispatcher(&device, &state, &engine);
}

}  // namespace kelvaro::console
