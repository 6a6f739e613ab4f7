// Whether what is down is what the Controls that are down, and the mouse controls, have pressed.
#pragma once

#include <set>
#include <string>

#include "engine/control_engine.h"
#include "tests/console/held_inputs.h"

namespace kelvaro::swarm {

class Reasons {
 public:
  using Inputs = std::set<HeldInputs::Input>;

  // To be called while no replay is under way, and at each beginning and end of a detection: mouse
  // buttons that are down while a detection runs are the exception. It takes the edges of the pad's
  // buttons for itself, and so also the one that would let go.
  void NoteExceptions(const ControlEngine& engine, const HeldInputs& held);
  // While no replay is under way: all that is down for no reason, and all that isn't down although
  // a Control presses it that nothing else interferes with; empty for none.
  std::string Disagreement(ControlEngine& engine, const HeldInputs& held);
  // The same where nothing may be down any more.
  std::string LeftAtTheEnd(const HeldInputs& held) const;

 private:
  Inputs Explained(ControlEngine& engine) const;
  static Inputs Demanded(ControlEngine& engine);

  Inputs heldByDetection;
};

}  // namespace kelvaro::swarm
