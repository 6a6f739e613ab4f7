// A recording of a game device: what it is, and what changed when. Written as JSON Lines; the
// first line describes the device, each other one has its time and the changes at it. Before the
// first change every button is up, every axis 0, every hat centred.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "app/platform/direct_input.h"

namespace platform {

// Names one axis of DIJOYSTATE2: kind 0 to 7 (X, Y, Z, RX, RY, RZ, SliderA, SliderB), bank 0 to 3.
struct AxisName {
  std::uint16_t kind = 0;
  std::uint16_t bank = 0;
  friend bool operator==(const AxisName&, const AxisName&) = default;
};

// "Axis_X0" to "SliderB3". False, with *axis untouched, for any other text.
bool ParseAxisName(const std::string& text, AxisName* axis);
std::string AxisNameText(AxisName axis);
// The field of that axis.
std::int32_t* AxisField(DIJOYSTATE2* state, AxisName axis);

struct DeviceDescription {
  std::string name = "Pad";
  GUID guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
  std::uint32_t buttons = 11;  // 0 to 128
  std::uint32_t axes = 6;      // 0 to 8
  std::uint32_t povs = 1;      // 0 to 4
  friend bool operator==(const DeviceDescription&, const DeviceDescription&) = default;
};

// What changed at one time; what isn't named stays.
struct StateChange {
  std::uint64_t t = 0;  // ms from the start
  bool hasButtons = false;
  std::vector<std::uint32_t> buttons;  // all that are held now, from 1
  std::vector<std::pair<AxisName, std::int32_t>> axes;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> povs;  // hat 0 to 3, its rgdwPOV value
  bool hasLost = false;
  bool lost = false;  // the device doesn't answer from here on
  friend bool operator==(const StateChange&, const StateChange&) = default;
};

// Makes the change in *state; `lost` is the caller's business.
void ApplyChange(const StateChange& change, DIJOYSTATE2* state);
// What turns `before` into `after`, at time 0; it names no button where all are as they were.
StateChange ChangeBetween(const DIJOYSTATE2& before, const DIJOYSTATE2& after);
// Everything at rest: buttons up, axes 0, hats centred.
DIJOYSTATE2 StateAtRest();

struct Recording {
  DeviceDescription device;
  std::vector<StateChange> changes;  // times rise or are equal
  std::uint64_t Length() const { return changes.empty() ? 0 : changes.back().t; }
  friend bool operator==(const Recording&, const Recording&) = default;
};

// Reads a whole recording. False with *error naming line, column in bytes and member, such as
// "3:24: povs.POV9: no such hat" (the caller puts the file and a colon in front).
bool ReadRecording(std::istream& in, Recording* recording, std::string* error);

// The lines of a recording, without their line feeds.
std::string RecordingHeaderLine(const DeviceDescription& device);
std::string RecordingChangeLine(const StateChange& change);

// 32 hex digits in file order (Data1, Data2, Data3 most significant byte first, then Data4).
std::string GuidText(const GUID& guid);
bool ParseGuid(const std::string& text, GUID* guid);

// A JSON string where the bytes are UTF-8, otherwise {"bytes":"<hex>"}.
std::string JsonText(const std::string& text);

}  // namespace platform
