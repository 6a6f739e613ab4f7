#include "console/import/foreign_profile.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

#include "console/import/amgp_file.h"
#include "console/import/lyt_file.h"
#include "console/profile_json.h"
#include "engine/input_text.h"

namespace kelvaro::console {
namespace {

// How long a key stays down that is let go before the next, where the file doesn't say; a game that
// looks 30 times a second sees it. ms.
constexpr std::uint32_t kTapTime = 50;
// Of a repeated key, at most; all keys wait meanwhile. ms.
constexpr std::uint32_t kRepeatedTapTime = 20;

// A direction of an axis or a hat, as the mouse settings name inputs.
struct MouseDirection {
  TriggerItem input;
  bool positive = false;
};

std::optional<MouseDirection> DirectionOf(const ForeignInput& input) {
  if (input.buttonMask != 0 || input.items.size() != 1) return std::nullopt;
  const TriggerItem& item = input.items[0];
  if (item.kind != input_kind::kPov) {
    return MouseDirection{MouseInput(item.kind, item.index), item.value == AxisPos};
  }
  const bool vertical = item.value == PovUp || item.value == PovDown;
  return MouseDirection{
      MouseInput(vertical ? input_kind::kPovVertical : input_kind::kPov, item.index),
      item.value == PovRight || item.value == PovDown};
}

const char* WordsOf(ForeignMotion motion) {
  switch (motion) {
    case ForeignMotion::X:
      return "the pointer from side to side";
    case ForeignMotion::Y:
      return "the pointer up and down";
    case ForeignMotion::Wheel:
      break;
  }
  return "the wheel";
}

}  // namespace

bool ParseAxes(const std::string& text, std::vector<std::uint16_t>* axes) {
  static constexpr const char* kNames[] = {"X", "Y", "Z", "RX", "RY", "RZ", "SliderA", "SliderB"};
  axes->clear();
  std::istringstream names(text);
  for (std::string name; std::getline(names, name, ',');) {
    const auto* const kind = std::find(std::begin(kNames), std::end(kNames), name);
    if (kind == std::end(kNames)) return false;
    axes->push_back(static_cast<std::uint16_t>(kind - kNames));
  }
  return !axes->empty() && !text.ends_with(',');
}

ForeignInput ButtonInput(std::uint32_t button) { return {std::uint64_t{1} << (button - 1), {}}; }

ForeignInput AxisInput(std::uint16_t kind, bool positive) {
  return {0, {{kind, 0, positive ? AxisPos : AxisNeg}}};
}

ForeignInput HatInput(std::uint16_t hat, std::uint16_t direction) {
  return {0, {{input_kind::kPov, hat, direction}}};
}

ForeignInput operator+(const ForeignInput& a, const ForeignInput& b) {
  ForeignInput both{a.buttonMask | b.buttonMask, a.items};
  both.items.insert(both.items.end(), b.items.begin(), b.items.end());
  return both;
}

void ForeignProfile::Add(const ForeignControl& made) {
  if (controls == kMostControls) {
    return LeaveOut(made.place, "more than " + std::to_string(kMostControls) + " Controls");
  }
  std::string difference;
  auto action = made.keys.Make(made.repeatEvery > 0, &difference);
  if (!difference.empty()) Change(made.place, difference);

  if (!profile.controls.AddTail({})) return;
  ++controls;
  Control& control = *profile.controls.tail->value;
  control.controlId = profile.nextControlId++;
  control.description = TextOf(made.description);
  control.activateOnPress = made.whenLetGo ? 0 : 1;
  control.SetButtonMask(made.input.buttonMask);
  for (const TriggerItem& item : made.input.items) control.triggerItems.AddTail(item);
  if (made.repeatEvery > 0) {
    control.repeatEnabled = 1;
    control.repeatDelay = control.repeatSpeed = made.repeatEvery;
    control.keyHoldTime = std::min(made.repeatEvery / 2, kRepeatedTapTime);
  } else if (made.keys.HasTaps()) {
    control.keyHoldTime = made.keyHoldTime > 0 ? made.keyHoldTime : kTapTime;
  }
  if (control.actions.AddTail(action.get())) static_cast<void>(action.release());  // the list's now

  const std::vector<TriggerItem>& items = made.input.items;
  if (items.size() > 1) Change(made.place, "a key of one of the two directions may stay down, too");
  if (items.size() == 1 && items[0].kind == input_kind::kPov) {
    Hat& hat = hats[items[0].index];
    if (hat.directions == 0) hat.first = made.place;
    hat.directions |= items[0].value;
  }
  ByteString trigger;
  TriggerText(control, &trigger);
  if (!triggers.insert(Bytes(trigger)).second) {
    Change(made.place,
           "another Control has the same inputs, " + Bytes(trigger) + "; only one of the two acts");
  }
}

void ForeignProfile::Finish() {
  SetMotion(ForeignMotion::X, &profile.mouseX);
  SetMotion(ForeignMotion::Y, &profile.mouseY);
  SetMotion(ForeignMotion::Wheel, &profile.mouseWheel);
  TellOfHats();
  profile.mouseAlwaysActive = movesMouse;
  profile.profileLock.NotNeeded();
  profile.RebuildDispatchList();
  std::stable_sort(notes.begin(), notes.end(),
                   [](const ForeignNote& a, const ForeignNote& b) { return a.place < b.place; });
}

// The first input that can do it gets it.
void ForeignProfile::SetMotion(ForeignMotion motion, Relaxed<TriggerItem>* target) {
  const std::string words = WordsOf(motion);
  std::optional<TriggerItem> taken;
  const ForeignMouseMove* first = nullptr;
  bool sides[2] = {false, false};
  for (const ForeignMouseMove& move : moves) {
    if (move.motion != motion) continue;
    const auto direction = DirectionOf(move.input);
    if (!direction) {
      LeaveOut(move.place, "only an axis or a hat can move " + words);
    } else if (direction->positive != move.positive) {
      LeaveOut(move.place, "no input moves " + words + " the other way round");
    } else if (taken && !taken->SameInput(direction->input)) {
      LeaveOut(move.place, "only one input can move " + words);
    } else {
      if (!first) first = &move;
      taken = direction->input;
      sides[move.positive ? 1 : 0] = true;
      if (motion != ForeignMotion::Wheel) {
        SetSpeed(move);
        SetDeadZone(move);
      }
    }
  }
  if (!taken) return;
  *target = *taken;
  movesMouse = true;
  if (!sides[0] || !sides[1]) {
    Change(first->place, "both directions of this input move " + words);
  }
}

// The pointer has one speed: that of the first move that tells one.
void ForeignProfile::SetSpeed(const ForeignMouseMove& move) {
  if (move.pixelsPerSecond == 0 || move.pixelsPerSecond == speed) return;
  if (speed != 0) {
    Change(move.place, "the pointer has one speed, that of its first input");
    return;
  }
  speed = move.pixelsPerSecond;
  // Pixels of one poll at the end of the way, 1 + curve, and the curve is (sensitivity + 2) / 5.
  const double counts = static_cast<double>(speed) * profile.pollInterval / 1000;
  profile.movementSensitivity =
      static_cast<std::int32_t>(std::clamp(std::lround((counts - 1) * 5) - 2, 0L, 50L));
}

// Likewise.
void ForeignProfile::SetDeadZone(const ForeignMouseMove& move) {
  if (move.deadZone == 0 || move.deadZone == deadZone) return;
  if (deadZone != 0) {
    Change(move.place, "the pointer has one dead zone, that of its first input");
    return;
  }
  deadZone = move.deadZone;
  constexpr double kWay = 32767;
  profile.movementDamper =
      static_cast<std::int32_t>(std::clamp(std::lround(deadZone / kWay * 100), 0L, 50L));
}

// The Controls of one hat take turns.
void ForeignProfile::TellOfHats() {
  for (const auto& [number, hat] : hats) {
    if ((hat.directions & (PovLeft | PovRight)) != 0 && (hat.directions & (PovUp | PovDown)) != 0) {
      Change(hat.first, "between two directions of a hat only one Control starts");
    }
  }
}

bool ReadForeignProfile(const std::string& bytes, const ForeignChoice& choice,
                        ForeignProfile* profile, ForeignFault* fault) {
  const bool read = LooksLikeAmgp(bytes) ? ReadAmgp(bytes, choice, profile, fault)
                                         : ReadLyt(bytes, choice, profile, fault);
  if (read) profile->Finish();
  return read;
}

}  // namespace kelvaro::console
