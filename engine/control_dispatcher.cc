#include "engine/control_engine.h"
#include "engine/precedence.h"

namespace kelvaro {
namespace {

// Null when none of them contains it.
const Control* ContainerOf(const Control& control, const LinkedList<const Control*>& fired) {
  for (const Control* other : fired) {
    if (IsContained(control, *other)) return other;
  }
  return nullptr;
}

}  // namespace

void ControlDispatcher(DeviceManager* device, const DIJOYSTATE2* state, void* context) {
  auto& engine = *static_cast<ControlEngine*>(context);
  if (engine.StandsStill()) return;

  DeviceSnapshot& snapshot = engine.snapshot;
  UpdateSnapshot(&snapshot, *state);
  const std::uint64_t buttons = snapshot.dispatchButtons;
  if (DispatchObserver* const told = engine.observer) told->ChangeBegins(snapshot);

  if (engine.host.ControlDialogOpen()) {
    engine.host.ShowDetectedTrigger(*device, snapshot);
  } else {
    // Before the Controls: it takes out the buttons that are the mouse's, and may end a detection.
    engine.MouseButtonStep();
    if (!engine.IsDetecting()) {
      LinkedList<const Control*> fired;
      LockGuard guard(engine.profile.profileLock);
      for (Control& control : engine.profile.DispatchList) {
        engine.DispatchControl(&control, &fired);
      }
    }
  }

  snapshot.dispatchButtons = buttons;
  RollSnapshot(&snapshot);
  if (DispatchObserver* const told = engine.observer) told->ChangeEnds();
}

void ControlEngine::DispatchControl(Control* control, LinkedList<const Control*>* fired) {
  // Evaluated in any case, since that advances its arming, even if the result isn't used.
  if (!control->EvaluateTrigger(device, snapshot)) {
    if (control->triggerDown) return EndControl(control);
    return Tell(*control, Verdict::Rests);
  }
  // A Control neither starts nor ends while the mouse has its inputs, or an active Control contains
  // them: triggerDown stays. Of two Controls with the same inputs the first in the DispatchList
  // wins: Profile::RebuildDispatchList settles which one that is.
  if (MouseIsOn() && UsesMouseInput(profile, *control)) return Tell(*control, Verdict::MouseHasIt);
  if (const Control* container = ContainerOf(*control, *fired)) {
    return Tell(*control, Verdict::Contained, container);
  }

  // Also if it is down already, since it keeps silencing its parts. Without memory for the note it
  // fires anyway.
  static_cast<void>(fired->AddTail(control));
  if (control->triggerDown) return Tell(*control, Verdict::DownAlready);
  if (!paused) FireControl(control);
}

void ControlEngine::EndControl(Control* control) {
  Tell(*control, Verdict::Ends);
  if (control == repeatWorker.Repeating()) repeatWorker.Clear();
  const bool keysAreDown = control->triggerDown == Control::kDown;
  control->triggerDown = Control::kUp;
  // Each replay of a repeating Control is complete in itself.
  if (control->repeatEnabled || !keysAreDown) return;
  for (InputAction* action : control->actions) action->Release();
}

void ControlEngine::FireControl(Control* control) {
  Tell(*control, Verdict::Fires);
  // Fired by a release, it has no later moment at which its keys could be let go.
  const bool releaseAtOnce = !control->activateOnPress && !control->repeatEnabled;
  for (InputAction* action : control->actions) {
    action->Replay(control->repeatEnabled, control->keyHoldTime, control->keyReleasePause);
    if (releaseAtOnce) action->Release();
  }
  if (control->activateOnPress) {
    control->triggerDown = Control::kDown;
    if (control->repeatEnabled) repeatWorker.Start(control);
  }
  if (control->toggleMouseControls) {
    mouseActive = !mouseActive;
    if (DispatchObserver* const told = observer) told->MouseSwitched(mouseActive);
  }
}

}  // namespace kelvaro
