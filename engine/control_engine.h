// The run-time state of the control engine and its two steps: MouseStep on every good poll,
// ControlDispatcher on every changed state. One object serves one profile and one device manager;
// a window or a console owns it.
//
// Threads: MouseStep runs on the timer's, ControlDispatcher on the notification thread, both with
// deviceLock held. Locks nest deviceLock, mouseLock, profileLock, repeatLock.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/device_manager.h"
#include "engine/control.h"
#include "engine/device_snapshot.h"
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

  // Stores the position (0 to 50) in the profile and sets what MouseStep derives from it.
  void ApplyMouseSlider(std::uint32_t sliderId, std::int32_t position);
  // The same for all four, from the profile.
  void ApplyMouseSettings();

  bool MouseIsOn() const;

  // Ends a running mouse detection and stores its result.
  void EndMouseDetection();

  // Lets go of everything that is held: each Control that is down and doesn't repeat gets its
  // Release, in the order of the DispatchList; then the mouse buttons that are down go up, in one
  // call. A replay under way is waited for. For the end of a run.
  void LetGo();

  DeviceSnapshot snapshot;  // of the notification thread
  RepeatWorker repeatWorker;

  // No lock; a stale read costs one dispatch.
  Relaxed<bool> mouseActive{false};
  Relaxed<bool> mouseTestMode{false};
  std::atomic<std::uint32_t> detectCount{0};

  RecursiveLock mouseLock{LockRank::Mouse};
  Relaxed<std::int32_t> movementFactor{3};
  Relaxed<std::int32_t> wheelFactor{0};
  Relaxed<std::int32_t> movementDeadZone{0};  // axis units
  Relaxed<std::int32_t> wheelDeadZone{0};     // axis units
  bool leftDown = false;                      // guarded by mouseLock, as is all below
  bool middleDown = false;
  bool rightDown = false;
  double accumulatedX = 0.0;  // counts not yet sent
  double accumulatedY = 0.0;
  double accumulatedWheel = 0.0;

  std::uint32_t detectTargetId = 0;
  bool detectAxis = false;
  TriggerItem detectResult{input_kind::kNone, 0, 0};

  Profile& profile;
  DeviceManager& device;
  EngineHost& host;

 private:
  friend void MouseStep(DeviceManager*, const DIJOYSTATE2*, void*);
  friend void ControlDispatcher(DeviceManager*, const DIJOYSTATE2*, void*);
  void MouseButtonStep();
};

// The callbacks of the device manager; `context` is the ControlEngine.
void MouseStep(DeviceManager* device, const DIJOYSTATE2* state, void* context);
void ControlDispatcher(DeviceManager* device, const DIJOYSTATE2* state, void* context);

}  // namespace kelvaro
