// A game device that a test or a recording plays.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/platform/direct_input.h"
#include "app/platform/recording/recording.h"

namespace platform {

// It stays attached until it is unplugged. While it is lost, or unplugged, polls fail with
// DIERR_INPUTLOST and Acquire fails; its state changes all the same, and the first poll that it
// answers again shows what it has become. A poll at the very millisecond of its return is answered.
// An axis or hat that no device has, or a button above 128, ends the program.
class SimulatedDevice {
 public:
  virtual ~SimulatedDevice() = default;

  // Changes that count from now on. Press names all buttons that are held, from 1.
  virtual void Press(std::initializer_list<std::uint32_t> buttons) = 0;
  virtual void MoveAxis(const std::string& axis, std::int32_t value) = 0;  // "Axis_X0"
  virtual void PointHat(std::uint32_t hat, std::uint32_t angle) = 0;       // kPovCentred for none
  virtual void Lose() = 0;                                                 // answers no more
  virtual void Return() = 0;                                               // answers again
  virtual void Change(const StateChange& change) = 0;                      // its time is ignored

  // A change at a time of the Simulation, now or later.
  virtual void ChangeAt(std::uint64_t t, const StateChange& change) = 0;
  // Plays the changes, with times that count from the device's first Acquire.
  virtual void Play(const std::vector<StateChange>& changes) = 0;

  // Out of, and back in, the list of attached devices; an open one is lost meanwhile.
  virtual void Unplug() = 0;
  virtual void PlugIn() = 0;

  virtual const DIJOYSTATE2& State() const = 0;
  virtual const DeviceDescription& Description() const = 0;
};

}  // namespace platform
