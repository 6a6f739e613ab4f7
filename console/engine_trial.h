// What the engine decides about one or two Controls that stand alone, which send nothing.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "app/platform/simulation/simulation.h"
#include "console/engine_session.h"
#include "engine/dispatch_observer.h"

namespace kelvaro::console {

// On a simulated machine of its own: not while another platform than that of a FileMachine is
// installed.
class EngineTrial : public DispatchObserver {
 public:
  explicit EngineTrial(const MouseSettings& mouse);

  // Goes through the states from rest, and back. The Controls in the order of the DispatchList.
  void Play(const std::vector<const Control*>& controls, bool mouseActive,
            const std::vector<platform::DIJOYSTATE2>& states);

  // Of the last Play. The moments at which the last of the Controls fires: its state's number.
  std::vector<std::size_t> firings;
  std::uint64_t takenButtons = 0;
  std::set<std::uint32_t> repeatLosers;  // places, from 1

  // Fills *taken, a fresh one, with what the mouse controls have of a Control that doesn't fire
  // while they are on. False where it fires, or wouldn't in any case. Plays it.
  bool TakenInputs(const Control& control, Trigger* taken);

  void ChangeBegins(const DeviceSnapshot&) override {}
  void ChangeEnds() override { ++moment; }
  void MouseTakes(std::uint64_t buttons) override { takenButtons |= buttons; }
  void ControlJudged(const Control& control, Verdict verdict, const Control* by) override;
  void MouseSwitched(bool) override {}
  void RepeatLost(const Control& control, const Control&) override {
    repeatLosers.insert(control.controlId);
  }
  void Repeats(const Control&) override {}

 private:
  void Add(const Control& source);
  void Dispatch(const platform::DIJOYSTATE2& state);

  platform::simulation::Simulation machine;
  Profile profile;
  ConsoleHost host;
  DeviceManager device;
  ControlEngine engine{profile, device, host};
  std::size_t moment = 0;
};

}  // namespace kelvaro::console
