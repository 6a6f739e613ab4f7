// A script: what is on the disk, what a pad does, and what a person does meanwhile. Both the plain
// engine and the real one play it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvaro::plain {

// kind 0 to 7: the axis of that kind, `index` its bank. 8: the hat `index`; for the mouse 8 is a
// hat used sideways and 9 one used up and down. 11: none.
struct Input {
  unsigned kind = 11;
  unsigned index = 0;
  unsigned direction = 0;  // wanted, in a Trigger: 1 or 2 of an axis, direction bits of a hat
};

struct ScriptAction {
  bool holdAll = false;
  std::string text;                  // in the key language, or
  std::vector<std::uint32_t> steps;  // vk, scan and flags, a byte each from the lowest
};

struct ScriptControl {
  bool press = true;
  std::uint64_t buttons = 0;
  std::vector<Input> inputs;
  bool togglesMouse = false;
  bool repeats = false;
  std::uint32_t repeatDelay = 0;  // ms, as are the next three
  std::uint32_t repeatSpeed = 0;
  std::uint32_t holdTime = 0;
  std::uint32_t releasePause = 0;
  std::vector<ScriptAction> actions;
};

struct ScriptProfile {
  std::uint32_t pollInterval = 5;  // ms
  std::int32_t movementDamper = 5;
  std::int32_t movementSensitivity = 15;
  std::int32_t wheelDamper = 5;
  std::int32_t wheelSensitivity = 15;
  std::uint64_t leftMask = 0;
  std::uint64_t middleMask = 0;
  std::uint64_t rightMask = 0;
  Input mouseX;
  Input mouseY;
  Input mouseWheel;
  bool mouseAlwaysActive = false;
  std::vector<ScriptControl> controls;
};

struct PadChange {
  enum class What { Button, Axis, Hat, Lost };
  std::uint64_t t = 0;  // ms from the start
  What what = What::Button;
  unsigned number = 0;  // of the button from 0, the axis as bank * 8 + kind, or the hat
  std::int32_t to = 0;  // 0 or 1 of a button and of lost; of a hat its value, -1 centred
};

struct PersonAct {
  enum class What { TestMode, AlwaysActive, Dialog, Slider, Load };
  std::uint64_t t = 0;  // not before
  What what = What::TestMode;
  unsigned number = 0;  // of the slider (0 movement damper, 1 movement sensitivity, 2 and 3 the
                        // wheel's), or of the profile
  int to = 0;           // off or on; the slider's position; whether the device is selected anew
};

struct Script {
  std::vector<ScriptProfile> profiles;  // the first is open from the start
  std::vector<PadChange> pad;           // times rise or are equal
  std::vector<PersonAct> person;        // times rise or are equal
  bool mouseActive = false;             // at the start
  std::uint32_t workerStart = 0;        // ms; the device is selected then, too
  std::uint32_t tickOffset = 0;
  std::uint64_t end = 0;
};

}  // namespace kelvaro::plain
