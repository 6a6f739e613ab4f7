#include "console/fitting_states.h"

#include "app/platform/recording/recording.h"
#include "device/device_manager.h"

namespace kelvaro::console {
namespace {

constexpr std::uint32_t kDirections = 8;  // of a hat
constexpr std::uint32_t kStep = 4500;     // hundredths of a degree

bool IsKnownAxis(const TriggerItem& item) {
  return item.kind <= input_kind::kSliderB && item.index < kBanks;
}

bool IsKnownHat(const TriggerItem& item) {
  return item.kind == input_kind::kPov && item.index < kHats;
}

// All but the hats, which are centred.
DIJOYSTATE2 PushedState(const std::vector<const Trigger*>& triggers) {
  DIJOYSTATE2 state = platform::StateAtRest();
  for (const Trigger* trigger : triggers) {
    for (std::uint32_t n = 0; n < 64; ++n) {
      if ((trigger->buttonMask >> n & 1) != 0) state.rgbButtons[n] = 0x80;
    }
    for (const TriggerItem& item : trigger->triggerItems) {
      if (!IsKnownAxis(item)) continue;
      *platform::AxisField(&state, {item.kind, item.index}) =
          (item.value & 0xFF) == AxisNeg ? DeviceManager::axisMin : DeviceManager::axisMax;
    }
  }
  return state;
}

}  // namespace

bool IsHeld(const Trigger& trigger, const DIJOYSTATE2& state) {
  Control probe;
  probe.Trigger::operator=(trigger);
  probe.activateOnPress = 1;
  probe.triggerArmed = 0;
  DeviceSnapshot snapshot;
  UpdateSnapshot(&snapshot, state);
  return probe.EvaluateTrigger(DeviceManager::axisMax, snapshot);
}

std::optional<DIJOYSTATE2> FindState(const std::vector<const Trigger*>& triggers,
                                     const std::function<bool(const DIJOYSTATE2&)>& fits) {
  DIJOYSTATE2 state = PushedState(triggers);
  std::vector<std::uint16_t> hats;
  for (const Trigger* trigger : triggers) {
    for (const TriggerItem& item : trigger->triggerItems) {
      if (!IsKnownHat(item) || state.rgdwPOV[item.index] == 0) continue;
      hats.push_back(item.index);
      state.rgdwPOV[item.index] = 0;
    }
  }
  // Each hat is a digit; the first one turns fastest.
  for (;;) {
    if (fits(state)) return state;
    std::size_t digit = 0;
    for (; digit < hats.size(); ++digit) {
      std::uint32_t& angle = state.rgdwPOV[hats[digit]];
      angle = (angle + kStep) % (kDirections * kStep);
      if (angle != 0) break;
    }
    if (digit == hats.size()) return std::nullopt;
  }
}

DIJOYSTATE2 Without(const Trigger& trigger, DIJOYSTATE2 state) {
  for (std::uint32_t n = 0; n < 64; ++n) {
    if ((trigger.buttonMask >> n & 1) != 0) state.rgbButtons[n] = 0;
  }
  for (const TriggerItem& item : trigger.triggerItems) {
    if (IsKnownAxis(item)) *platform::AxisField(&state, {item.kind, item.index}) = 0;
    if (IsKnownHat(item)) state.rgdwPOV[item.index] = platform::kPovCentred;
  }
  return state;
}

}  // namespace kelvaro::console
