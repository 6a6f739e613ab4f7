// A second telling of the rules of Triggers, which shares no code with the engine's: it works on
// the raw values of a state, and puts each rule as a statement about the whole Trigger instead of a
// walk that leaves early.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "engine/device_snapshot.h"

namespace kelvaro {

// ---- Hats ----

// The sectors by the angle at which each begins.
inline std::set<std::string> ModelDirections(std::uint32_t angle) {
  static const struct {
    std::uint32_t begin;
    std::set<std::string> directions;
  } sectors[] = {
      {0, {"up"}},       {4500, {"up", "right"}},
      {6001, {"right"}}, {12000, {"right", "down"}},
      {13501, {"down"}}, {22500, {"down", "left"}},
      {24001, {"left"}}, {30000, {"left", "up"}},
      {31501, {"up"}},   {65535, {}},
  };
  const auto behind =
      std::upper_bound(std::begin(sectors), std::end(sectors), angle % 65536,
                       [](std::uint32_t a, const auto& sector) { return a < sector.begin; });
  return std::prev(behind)->directions;
}

inline std::uint16_t Bits(const std::set<std::string>& directions) {
  std::uint16_t bits = 0;
  if (directions.count("left")) bits += 1;
  if (directions.count("up")) bits += 2;
  if (directions.count("right")) bits += 4;
  if (directions.count("down")) bits += 8;
  return bits;
}

// ---- Triggers ----

struct ModelTrigger {
  bool press = true;
  std::set<int> buttons;  // from 0
  std::vector<TriggerItem> items;
  bool armed = false;
  bool spoiled = false;
};

enum class ModelVerdict { Active, Resting, Wrong, NoInput };

inline std::int32_t Raw(const DIJOYSTATE2& s, int kind, int bank) {
  const std::int32_t fields[4][8] = {
      {s.lX, s.lY, s.lZ, s.lRx, s.lRy, s.lRz, s.rglSlider[0], s.rglSlider[1]},
      {s.lVX, s.lVY, s.lVZ, s.lVRx, s.lVRy, s.lVRz, s.rglVSlider[0], s.rglVSlider[1]},
      {s.lAX, s.lAY, s.lAZ, s.lARx, s.lARy, s.lARz, s.rglASlider[0], s.rglASlider[1]},
      {s.lFX, s.lFY, s.lFZ, s.lFRx, s.lFRy, s.lFRz, s.rglFSlider[0], s.rglFSlider[1]}};
  return fields[bank][kind];
}

inline ModelVerdict ModelItem(const TriggerItem& item, const DIJOYSTATE2& state) {
  const int wanted = item.value % 256;
  if (item.kind < 8) {
    const std::int32_t value = Raw(state, item.kind, item.index);
    if (value >= -16000 && value <= 16000) return ModelVerdict::Resting;
    return wanted == (value < 0 ? 1 : 2) ? ModelVerdict::Active : ModelVerdict::Wrong;
  }
  if (item.kind == 8) {
    const std::set<std::string> pushed = ModelDirections(state.rgdwPOV[item.index]);
    if (pushed.empty()) return ModelVerdict::Resting;
    return Bits(pushed) & wanted ? ModelVerdict::Active : ModelVerdict::Wrong;
  }
  return ModelVerdict::NoInput;
}

// Whether the Trigger fires; *trigger becomes what it is afterwards.
inline bool ModelEvaluate(ModelTrigger* trigger, const DIJOYSTATE2& state) {
  std::set<int> held;
  for (int n = 0; n < 64; ++n) {
    if (state.rgbButtons[n]) held.insert(n);
  }
  const bool hasButtons = !trigger->buttons.empty();
  const bool complete =
      std::includes(held.begin(), held.end(), trigger->buttons.begin(), trigger->buttons.end());
  const bool stranger =
      !std::includes(trigger->buttons.begin(), trigger->buttons.end(), held.begin(), held.end());

  if (hasButtons && held.empty() && !trigger->armed) {
    trigger->spoiled = false;
    return false;
  }
  if (hasButtons && !held.empty() && !complete) {
    if (!trigger->press && stranger) trigger->spoiled = true;
    return false;
  }

  std::vector<ModelVerdict> verdicts;
  for (const TriggerItem& item : trigger->items) verdicts.push_back(ModelItem(item, state));
  const auto has = [&](ModelVerdict v) {
    return std::count(verdicts.begin(), verdicts.end(), v) > 0;
  };
  if (has(ModelVerdict::Wrong) || (has(ModelVerdict::Resting) && !trigger->armed)) return false;
  // With no item the buttons decide, and these are complete or all let go by now.
  if (verdicts.empty() ? !hasButtons : verdicts.back() == ModelVerdict::NoInput) return false;

  if (trigger->press) return true;
  trigger->armed = !trigger->armed;
  if (trigger->armed) return false;
  const bool fires = !trigger->spoiled;
  trigger->spoiled = false;
  return fires;
}

}  // namespace kelvaro
