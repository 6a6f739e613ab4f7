// The run-time state of the control engine and its two steps: MouseStep on every good poll,
// ControlDispatcher on every changed state. One object serves one profile and one device manager;
// a window or a console owns it, starts the thread of repeatWorker, and stops the device before
// this goes.
//
// Threads: MouseStep runs on the timer's, ControlDispatcher on the notification thread, both with
// deviceLock held. Locks nest deviceLock, mouseLock, profileLock, repeatLock.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/device_manager.h"
#include "engine/control.h"
#include "engine/device_snapshot.h"
#include "engine/dispatch_observer.h"
#include "engine/engine_host.h"
#include "engine/profile.h"
#include "engine/repeat_worker.h"
#include "foundation/relaxed.h"

namespace kelvaro {

class ControlEngine {
 public:
  // Slider numbers of ApplyMouseSlider; they are those of the Mouse tab.
  static constexpr std::uint32_t kMovementSensitivitySlider = 1052;
  static constexpr std::uint32_t kMovementDamperSlider = 1056;
  static constexpr std::uint32_t kWheelDamperSlider = 1079;
  static constexpr std::uint32_t kWheelSensitivitySlider = 1080;

  // The three must outlive this. The mouse step's factors are set from the profile.
  ControlEngine(Profile& profile, DeviceManager& device, EngineHost& host);

  // Registers both steps with the device manager and then enables them.
  void Attach();

  // Has its decisions told from here on; borrowed, null for nobody. One that is taken away may
  // still hear of what is under way, so it must outlive the engine's threads, and be made before
  // them.
  void SetObserver(DispatchObserver* listener);

  // To be called once what the mouse step goes by was changed past this: the profile's mouse
  // settings, or what the host says. Polling may sleep otherwise. Any thread.
  void MouseChanged() { device.Wake(); }

  // Stores the position in the profile and sets what MouseStep derives from it. A position beyond
  // the slider's ends, 0 and 50, counts as the end; an unknown slider does nothing. Under
  // profileLock once the engine runs.
  void ApplyMouseSlider(std::uint32_t sliderId, std::int32_t position);
  // The same for all four, from the profile.
  void ApplyMouseSettings();

  // Whether any of the three flags that turn the mouse controls on is set. Any thread.
  bool MouseIsOn() const;

  // Test mode turns them on, too. Main thread; takes mouseLock.
  void SetTestMode(bool on);
  bool TestMode() const { return testMode; }

  // Begins to detect the input for `role`, while no detection runs. Until something moves, the
  // result is the present input; of a button only the index is taken, and the kind stays as the
  // last detection left it. Main thread.
  void StartMouseDetection(MouseRole role);
  // What a running detection is for; None while none runs. Any thread.
  MouseRole DetectedRole() const { return detectedRole; }
  bool IsDetecting() const { return DetectedRole() != MouseRole::None; }
  // Ends a running mouse detection, stores its result (nothing detected clears the assignment) and
  // tells the host. Saving is the caller's. Nothing when none runs. Main or notification thread;
  // takes profileLock.
  void EndMouseDetection();

  // Lets go of everything that is held: each Control that is down and doesn't repeat gets its
  // Release, in the order of the DispatchList; then the mouse buttons that are down go up, in one
  // call, whether the mouse controls are on or not. A replay under way is waited for. For the end
  // of a run: both steps do nothing from here on, so that an input that is still held presses
  // nothing anew, until Attach is called again.
  void LetGo();

  // The Controls' share of it alone, and the run goes on: before they are replaced or go. Takes
  // profileLock.
  void LetGoOfControls() { EndControls(Control::kUp); }

  // As LetGo where the device has been stopped and the run goes on without one. A mouse button that
  // has been down since the mouse controls went off stays so, as it does with a device.
  void LetGoWithoutDevice();

  // Lets go of everything that is held, as LetGo, and goes on: what is held of the pad presses
  // nothing anew until it has been let go. Any thread but the engine's own.
  void ReleaseAll();

  // From here on no state counts, until Resume, also of another profile or device; what is held is
  // let go. Of the change under way nothing more fires; a replay under way is waited for. Any
  // thread but the engine's own, as Resume.
  void Pause();
  // What the pad does now counts as it does at the start of a run: what was held before is
  // forgotten, what is held now fires.
  void Resume();
  bool IsPaused() const { return paused; }

  DeviceSnapshot snapshot;  // of the notification thread
  RepeatWorker repeatWorker;

  Relaxed<bool> mouseActive{false};  // no lock; a stale read costs one dispatch

  RecursiveLock mouseLock{LockRank::Mouse};
  // Derived from the profile.
  Relaxed<std::int32_t> movementFactor;
  Relaxed<std::int32_t> wheelFactor;
  Relaxed<std::int32_t> movementDeadZone;  // axis units
  Relaxed<std::int32_t> wheelDeadZone;     // axis units
  // Last events sent.
  bool leftDown KELVARO_GUARDED_BY(mouseLock) = false;
  bool middleDown KELVARO_GUARDED_BY(mouseLock) = false;
  bool rightDown KELVARO_GUARDED_BY(mouseLock) = false;
  // Counts not yet sent.
  double accumulatedX KELVARO_GUARDED_BY(mouseLock) = 0.0;
  double accumulatedY KELVARO_GUARDED_BY(mouseLock) = 0.0;
  double accumulatedWheel KELVARO_GUARDED_BY(mouseLock) = 0.0;

  Profile& profile;
  DeviceManager& device;
  EngineHost& host;

 private:
  friend void MouseStep(DeviceManager*, const DIJOYSTATE2*, void*);
  friend void ControlDispatcher(DeviceManager*, const DIJOYSTATE2*, void*);

  // Sends the mouse buttons' edges and takes the held buttons of the mouse out of dispatchButtons.
  // During a detection it detects instead.
  void MouseButtonStep();
  void DetectMouseInput() KELVARO_NEEDS(mouseLock);
  // One Control of the DispatchList; `fired` holds the active ones before it.
  void DispatchControl(Control* control, LinkedList<const Control*>* fired)
      KELVARO_NEEDS(profile.profileLock);
  void EndControl(Control* control) KELVARO_NEEDS(profile.profileLock);
  // All that are down, which then have this triggerDown, and the repeat.
  void EndControls(std::uint8_t triggerDown);
  bool StandsStill() const { return ended || paused; }
  void LiftMouseButtons();
  void FireControl(Control* control) KELVARO_NEEDS(profile.profileLock);
  void Tell(const Control& control, Verdict verdict, const Control* container = nullptr) {
    if (DispatchObserver* const told = observer) told->ControlJudged(control, verdict, container);
  }

  Relaxed<DispatchObserver*> observer{nullptr};
  Relaxed<bool> ended;  // by LetGo, until Attach
  Relaxed<bool> paused{false};
  Relaxed<bool> testMode{false};
  // Set after the result, since the notification thread looks at the role first.
  std::atomic<MouseRole> detectedRole{MouseRole::None};
  Relaxed<TriggerItem> detectResult{kNoInput};
};

// The callbacks of the device manager; `context` is the ControlEngine.

// Turns the mouse inputs' positions into at most one pointer and wheel event. Allocates nothing and
// waits for nothing: a step that finds mouseLock taken moves nothing.
void MouseStep(DeviceManager* device, const DIJOYSTATE2* state, void* context);

// Ends and fires Controls by the changed state, and replays on this thread.
void ControlDispatcher(DeviceManager* device, const DIJOYSTATE2* state, void* context);

}  // namespace kelvaro
