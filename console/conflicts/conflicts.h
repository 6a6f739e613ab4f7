// Which Controls of a profile are in one another's way, and what the mouse controls have of them:
// the engine is asked, with two Controls at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/profile.h"

namespace kelvaro::console {

// What becomes of a Control whose inputs another one contains, when its inputs are pressed in some
// order with those that only the other one has.
enum class Effect {
  Impossible,  // there is no such order
  Fires,       // as it would without the other
  Late,        // only when the other one's own inputs are let go before its
  Silent,      // not at all
  Rests,       // it wouldn't fire without the other either
};

struct Silencing {
  std::size_t by;  // this and all other places are those in the DispatchList, from 0
  std::size_t silenced;
  Effect atOnce = Effect::Impossible;  // all are pressed in one change
  Effect first = Effect::Impossible;   // its inputs before those that only the other one has
  Effect last = Effect::Impossible;    // its inputs after them
};

// The one slot for repeating goes from one to the other, which is pressed while the first is held.
struct RepeatLoss {
  std::size_t loser;
  std::size_t winner;
};

// What the mouse controls, while they are on, have of a Control, so that it doesn't fire.
struct MouseTaking {
  std::size_t control;
  std::string inputs;  // "B1+Axis_X0"
};

struct NeverFiring {
  std::size_t control;
  std::string why;
};

// Each in the order of the DispatchList. A Control that never fires is in the last two alone.
struct Conflicts {
  std::vector<Silencing> silencings;  // by the silenced one, then by the other
  std::vector<RepeatLoss> repeatLosses;
  std::vector<MouseTaking> mouseTakings;
  std::vector<NeverFiring> neverFiring;
};

// `profile` has a DispatchList. Of the engine on a machine of its own (EngineTrial).
Conflicts FindConflicts(const Profile& profile);

}  // namespace kelvaro::console
