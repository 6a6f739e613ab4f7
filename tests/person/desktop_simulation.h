// The whole machine with a screen, and a person in front of it.
#pragma once

#include <cstdint>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "tests/person/screen.h"

namespace platform::simulation {

class DesktopSimulation : public Simulation {
 public:
  // What the person sees and does, with the program that is run for it. Its log of calls and its
  // faults are those of the Simulation.
  simulation::Screen& Screen() { return screen; }

  // Short for AnswerNext and Boxes of the Screen: what the next message boxes are answered with, in
  // order, and all that were shown.
  void AnswerMessageBox(std::int32_t button) { screen.AnswerNext(button); }
  const std::vector<ShownMessageBox>& MessageBoxes() const { return screen.Boxes(); }

 private:
  simulation::Screen screen{*this};
};

}  // namespace platform::simulation
