// The whole machine with a screen, and a person in front of it.
#pragma once

#include "app/platform/simulation/simulation.h"
#include "tests/person/screen.h"

namespace platform::simulation {

class DesktopSimulation : public Simulation {
 public:
  // What the person sees and does, with the program that is run for it. Its log of calls and its
  // faults are those of the Simulation.
  simulation::Screen& Screen() { return screen; }

 private:
  simulation::Screen screen{*this};
};

}  // namespace platform::simulation
