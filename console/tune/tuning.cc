#include "console/tune/tuning.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "device/device_manager.h"
#include "engine/mouse_emulation.h"

namespace kelvaro::console {
namespace {

constexpr std::int32_t kNearlyFull = kFullWay / 100 * 95;

// The settings of movement, and those of the wheel.
struct Kind {
  const char* damperName;
  const char* damperLabel;
  const char* sensitivityName;
  const char* sensitivityLabel;
  Relaxed<std::int32_t> MouseSettings::*damper;
  Relaxed<std::int32_t> MouseSettings::*sensitivity;
  std::vector<Relaxed<TriggerItem> MouseSettings::*> inputs;
};

const Kind kKinds[] = {
    {"movementDamper",
     "Movement Axis Damper",
     "movementSensitivity",
     "Movement Sensitivity",
     &MouseSettings::movementDamper,
     &MouseSettings::movementSensitivity,
     {&MouseSettings::mouseX, &MouseSettings::mouseY}},
    {"wheelDamper",
     "Mouse Wheel Axis Damper",
     "wheelSensitivity",
     "Mouse Wheel Sensitivity",
     &MouseSettings::wheelDamper,
     &MouseSettings::wheelSensitivity,
     {&MouseSettings::mouseWheel}},
};

std::int32_t StillAt(const AxisStudy& axis) {
  return std::max(axis.furthest, std::abs(axis.returned.value_or(0)));
}

// Counts that a poll sends at that value of an axis.
std::int32_t CountsAt(std::int32_t value, std::int32_t damper, std::int32_t sensitivity) {
  const TriggerItem input = MouseInput(input_kind::kAxisX);
  DIJOYSTATE2 state;
  state.lX = value;
  const MouseCurve curve =
      MakeMouseCurve(kFullWay, MouseDeadZone(damper, kFullWay), MouseFactor(sensitivity));
  return static_cast<std::int32_t>(NextAccumulated(input, state, curve, 0.0));
}

std::string AxisText(const AxisStudy& axis) { return platform::AxisNameText(axis.name); }

// The least of the ends that these axes reach; nothing where one of them wasn't moved both ways.
std::optional<std::int32_t> ReachOf(const std::vector<AxisStudy>& axes) {
  std::int32_t reach = kFullWay;
  for (const AxisStudy& axis : axes) {
    if (!axis.moved || -axis.from < kFullWay / 4 || axis.to < kFullWay / 4) return std::nullopt;
    reach = std::min({reach, -axis.from, axis.to});
  }
  return reach;
}

Proposal ProposeDamper(const std::vector<AxisStudy>& axes, const Kind& kind,
                       const MouseSettings& settings) {
  Proposal proposal{kind.damperName, kind.damperLabel, kind.damper, 0, settings.*kind.damper, ""};
  for (const AxisStudy& axis : axes) {
    const auto damper = DamperFor(axis);
    proposal.value = std::max(proposal.value, damper.value_or(kMouseSliderEnd));
    if (!damper) proposal.lack = AxisText(axis) + " rests beyond what it holds";
  }
  return proposal;
}

Proposal ProposeSensitivity(const std::vector<AxisStudy>& axes, const Kind& kind,
                            const MouseSettings& settings, std::int32_t damper) {
  const std::int32_t present = settings.*kind.sensitivity;
  Proposal proposal{
      kind.sensitivityName, kind.sensitivityLabel, kind.sensitivity, present, present, ""};
  const auto reach = ReachOf(axes);
  if (!reach) {
    proposal.lack = "not all of its axes were turned both ways, so this is the present one";
    return proposal;
  }
  const std::int32_t wanted = CountsAt(kFullWay, damper, present);
  while (CountsAt(*reach, damper, proposal.value) < wanted && proposal.value < kMouseSliderEnd) {
    ++proposal.value;
  }
  const std::int32_t got = CountsAt(*reach, damper, proposal.value);
  if (got < wanted) {
    proposal.lack = "the pad reaches " + Percent(*reach) + ", which moves " + std::to_string(got) +
                    " of " + std::to_string(wanted) + " counts";
  }
  return proposal;
}

std::vector<AxisStudy> AxesOf(const std::vector<AxisStudy>& axes, const Kind& kind,
                              const MouseSettings& settings, bool anyStick) {
  std::vector<AxisStudy> used;
  if (anyStick) {
    const bool isMovement = kind.damper == &MouseSettings::movementDamper;
    for (const AxisStudy& axis : axes) {
      if (isMovement && axis.moved && !axis.RestsAtAnEnd()) used.push_back(axis);
    }
    return used;
  }
  for (const auto input : kind.inputs) {
    const TriggerItem item = settings.*input;
    if (item.kind > input_kind::kSliderB) continue;
    // One that was never seen elsewhere rests at 0.
    AxisStudy study;
    study.name = {item.kind, item.index};
    for (const AxisStudy& axis : axes) {
      if (axis.name == study.name) study = axis;
    }
    used.push_back(study);
  }
  return used;
}

}  // namespace

std::string Percent(std::int32_t value) {
  const std::int32_t tenths = (std::abs(value) * 1000 + kFullWay / 2) / kFullWay;
  return (value < 0 && tenths > 0 ? "-" : "") + std::to_string(tenths / 10) + "." +
         std::to_string(tenths % 10) + " %";
}

std::optional<std::int32_t> DamperFor(const AxisStudy& axis) {
  const std::int32_t needed = StillAt(axis) + StillAt(axis) / 4;
  for (std::int32_t damper = 0; damper <= kMouseSliderEnd; ++damper) {
    if (MouseDeadZone(damper, kFullWay) >= needed) return damper;
  }
  return std::nullopt;
}

std::vector<Proposal> ProposeFor(const PadStudy& study, const MouseSettings& settings,
                                 bool anyStick) {
  std::vector<Proposal> proposals;
  const std::vector<AxisStudy> axes = study.Axes();
  for (const Kind& kind : kKinds) {
    const std::vector<AxisStudy> used = AxesOf(axes, kind, settings, anyStick);
    if (used.empty()) continue;
    proposals.push_back(ProposeDamper(used, kind, settings));
    const std::int32_t damper = proposals.back().value;
    proposals.push_back(ProposeSensitivity(used, kind, settings, damper));
  }
  return proposals;
}

void Apply(const std::vector<Proposal>& proposals, MouseSettings* settings) {
  for (const Proposal& proposal : proposals) settings->*proposal.setting = proposal.value;
}

std::vector<std::string> Warnings(const PadStudy& study) {
  std::vector<std::string> warnings;
  for (const AxisStudy& axis : study.Axes()) {
    const std::string name = AxisText(axis);
    if (axis.IsOffCentre()) {
      warnings.push_back(name + " rests off its centre, by " + Percent(std::abs(axis.rest)));
    }
    if (axis.drift > kFullWay / 100) {
      warnings.push_back(name + " drifts while nobody touches it, by " + Percent(axis.drift));
    }
    if (axis.returned && !axis.RestsAtAnEnd() &&
        std::abs(*axis.returned - axis.rest) > kFullWay / 20) {
      warnings.push_back(name + " comes to rest elsewhere once it was moved, off by " +
                         Percent(std::abs(*axis.returned - axis.rest)));
    }
    if (axis.moved && (axis.from > -kNearlyFull || axis.to < kNearlyFull)) {
      warnings.push_back(name + " reaches " + Percent(axis.from) + " to " + Percent(axis.to) +
                         " only");
    }
  }
  for (const auto& [number, button] : study.Buttons()) {
    if (button.bounces == 0) continue;
    warnings.push_back("B" + std::to_string(number) + " bounces: of " +
                       std::to_string(button.presses) + " presses " +
                       std::to_string(button.bounces) + " came within " +
                       std::to_string(PadStudy::kBounce) + " ms of its being let go");
  }
  return warnings;
}

}  // namespace kelvaro::console
