// Which of the mouse's settings fit a pad.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/tune/pad_study.h"
#include "engine/mouse_settings.h"

namespace kelvaro::console {

// "-12.5 %" of the way from the middle to an end, for a value of an axis.
std::string Percent(std::int32_t value);

// One of the settings for movement or for the wheel.
struct Proposal {
  const char* name;   // as a profile in JSON has it
  const char* label;  // as the window has it
  Relaxed<std::int32_t> MouseSettings::*setting;
  std::int32_t value;
  std::int32_t was;
  std::string lack;  // what even this value, the most there is, doesn't do; "" for nothing
};

// The least damper whose dead zone holds the axis at rest with a quarter to spare; nothing where
// none does.
std::optional<std::int32_t> DamperFor(const AxisStudy& axis);

// A damper for all of the axes, and the least sensitivity, from the present one on, at which each
// end that the pad reaches moves the pointer (or turns the wheel) as fast as the end of a full
// range does at present. Of movement by those of the settings' mouseX and mouseY that are axes, of
// the wheel by its own. With `anyStick`, of movement by all that rest in the middle and were moved.
// None for what no such axis drives.
std::vector<Proposal> ProposeFor(const PadStudy& study, const MouseSettings& settings,
                                 bool anyStick);

// Sets those in the settings.
void Apply(const std::vector<Proposal>& proposals, MouseSettings* settings);

// What is worth telling of the pad, a sentence each: axes that rest off their centre, drift, or
// don't reach an end, buttons that bounce.
std::vector<std::string> Warnings(const PadStudy& study);

}  // namespace kelvaro::console
