// One mapping of a profile: a Trigger, and what happens when it fires. The actions of a Control are
// shared between copies; exactly one Control deletes a given action. A Control owns its actions
// unless it borrows them (Borrow).
#pragma once

#include <cstdint>

#include "engine/device_snapshot.h"
#include "foundation/byte_string.h"
#include "foundation/linked_list.h"

namespace kelvaro {

class DeviceManager;

// Base of what a Control does. The key language's KeyAction is the only kind.
class InputAction {
 public:
  static constexpr std::uint32_t kKeyAction = 1;

  virtual ~InputAction() = default;
  // Presses. repeat: the Control's repeatEnabled. Times in ms.
  virtual bool Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause);
  // Lets go of what Replay left down.
  virtual bool Release();
  virtual void CopyType(const InputAction& other);
  virtual void Clear();
  // A new action like this one, owned by the caller; null in the base. The engine copies actions
  // by it, since it lies below the kinds that there are.
  virtual InputAction* Clone() const;

  std::uint32_t actionType = 0;
};

// The inputs that must be active together, and the run-time state of their evaluation.
struct Trigger {
  std::uint8_t activateOnPress = 1;  // 0: fires when let go after having been active
  std::uint8_t triggerOption = 1;    // stored and copied; nothing reads it
  std::uint64_t buttonMask = 0;      // bit n: button n+1
  std::uint32_t buttonCount = 0;     // bits set in buttonMask
  LinkedList<TriggerItem> triggerItems;
  std::uint8_t triggerArmed = 0;
  std::uint8_t triggerSpoiled = 0;

  void ResetTrigger();
  // Sets the mask and its count.
  void SetButtonMask(std::uint64_t mask);
  // buttonCount plus the number of items.
  std::uint32_t Weight() const;
};

// When the keys come; times in ms.
struct KeyTimings {
  std::uint8_t repeatEnabled = 0;
  std::uint32_t repeatDelay = 500;
  std::uint32_t repeatSpeed = 50;
  std::uint32_t keyHoldTime = 0;
  std::uint32_t keyReleasePause = 0;
};

// All of a Control but its actions: plain values, which are copied and reset as a whole.
struct ControlSettings : Trigger, KeyTimings {
  ByteString description;
  std::uint32_t controlId = 0;   // unique within the profile
  std::uint8_t triggerDown = 0;  // run-time: fired on press and not yet inactive; see below
  std::uint8_t toggleMouseControls = 0;
  std::uint8_t repeatStarted = 0;    // run-time: 0 in repeatDelay, 1 at repeatSpeed
  std::uint32_t repeatLastTick = 0;  // run-time
};

class Control : public ControlSettings {
 public:
  // Values of triggerDown. A Control that was let go early fires again only once its Trigger has
  // been inactive.
  static constexpr std::uint8_t kUp = 0;
  static constexpr std::uint8_t kDown = 1;
  static constexpr std::uint8_t kDownButLetGo = 2;

  Control() = default;
  // Shares the actions of `source`; actionsBorrowed is 0, so the caller makes sure that only one
  // of the two deletes them.
  Control(const Control& source);
  Control& operator=(const Control& source) = delete;
  ~Control();

  // All members to their defaults, but actionsBorrowed stays.
  void Reset();
  // Destroys the actions unless they are borrowed; the list ends empty either way.
  void ClearActions();
  void CopyTrigger(const Control& source) { Trigger::operator=(source); }
  // Both full copies drop this Control's actions first, so `source` is to be another one; an
  // action for which memory runs out is left out.
  // A copy with actions of its own. actionsBorrowed ends at 0; repeatStarted and repeatLastTick
  // stay at their defaults.
  void CopyDeep(const Control& source);
  // A copy that takes over the source's actions: from here on this Control deletes them, and the
  // source is to be one that borrows. actionsBorrowed ends at 0.
  void CopyShared(const Control& source);
  // A copy that doesn't own the actions; their owner must keep them as long as this has them. Sets
  // actionsBorrowed, as nothing else does; Reset keeps it.
  void Borrow(const Control& source);

  // Whether the Trigger is active in this state (press), or was let go by it (release). Changes
  // triggerArmed and triggerSpoiled. Meant to be called once for each changed state.
  // axisMax: the positive limit of an axis, which the device knows. A hat above 3 counts as
  // centred.
  bool EvaluateTrigger(const DeviceManager& device, const DeviceSnapshot& snapshot);
  bool EvaluateTrigger(std::int32_t axisMax, const DeviceSnapshot& snapshot);
  // Whether an item names the same input, in any direction.
  bool UsesInput(const TriggerItem& item) const;

  LinkedList<InputAction*> actions;
  std::uint8_t actionsBorrowed = 0;
};

}  // namespace kelvaro
