// Hears what the engine decides while it decides it, for programs that show the reasons. An engine
// without one pays a look at a pointer. Calls come on the notification thread with deviceLock held,
// those of Controls with profileLock too, but for the ones that say otherwise; LetGo's come on its
// caller's. They must not wait for anything that the engine holds, nor change a Control.
#pragma once

#include <cstdint>

#include "engine/control.h"
#include "engine/device_snapshot.h"

namespace kelvaro {

// What a dispatch does with one Control.
enum class Verdict {
  Rests,        // its Trigger isn't active, and it isn't down; its arming may have changed
  Ends,         // it was down, and its Trigger isn't active any more; what it holds goes up next
  MouseHasIt,   // active, but the mouse controls are on and have an input of it
  Contained,    // active, but its inputs are among those of an active one before it
  DownAlready,  // active, and it has fired before
  Fires,        // its keys come next
};

class DispatchObserver {
 public:
  virtual ~DispatchObserver() = default;

  // Around all that comes of one changed state. dispatchButtons is still whole at the beginning.
  virtual void ChangeBegins(const DeviceSnapshot& snapshot) = 0;
  virtual void ChangeEnds() = 0;

  // Buttons that are held and that no Control sees in this change. mouseLock is held.
  virtual void MouseTakes(std::uint64_t buttons) = 0;
  // For each Control of the DispatchList in each change, after its Trigger was evaluated and before
  // anything comes of it. `container` is the one that contains it, otherwise null.
  virtual void ControlJudged(const Control& control, Verdict verdict, const Control* container) = 0;
  // A Control that has fired turned the mouse controls on or off.
  virtual void MouseSwitched(bool on) = 0;

  // The one slot for repeating went to `next`: `control` is still held and repeats no more.
  // repeatLock is held.
  virtual void RepeatLost(const Control& control, const Control& next) = 0;
  // Its keys come next, once more. On the repeat worker's thread, with repeatLock alone.
  virtual void Repeats(const Control& control) = 0;
};

}  // namespace kelvaro
