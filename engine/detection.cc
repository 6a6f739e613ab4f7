#include <bit>
#include <cstdlib>

#include "engine/control_engine.h"
#include "engine/input_text.h"
#include "engine/mouse_emulation.h"

namespace kelvaro {
namespace {

bool IsSideways(std::uint32_t angle) {
  return (angle >= 7000 && angle <= 11000) || (angle >= 25000 && angle <= 29000);
}

}  // namespace

bool DetectMouseAxis(std::int32_t axisMax, const DIJOYSTATE2& state, TriggerItem* result) {
  const std::int64_t threshold = AxisThreshold(axisMax);
  std::int64_t best = threshold;
  for (std::uint16_t bank = 0; bank < kBanks; ++bank) {
    for (std::uint16_t kind = input_kind::kAxisX; kind <= input_kind::kSliderB; ++kind) {
      const std::int64_t distance = std::abs(std::int64_t{AxisValue(state, kind, bank)});
      if (distance <= best) continue;
      best = distance;
      *result = MouseInput(kind, bank);
    }
  }
  if (best == axisMax) return true;

  for (std::uint16_t hat = 0; hat < kHats; ++hat) {
    if (PovDirectionsFromAngle(state.rgdwPOV[hat]) == 0) continue;
    const std::uint32_t angle = state.rgdwPOV[hat] & 0xFFFF;
    *result = MouseInput(IsSideways(angle) ? input_kind::kPov : input_kind::kPovVertical, hat);
    return true;
  }
  return best > threshold;
}

void ControlEngine::StartMouseDetection(MouseRole role) {
  const MouseRoleInput& input = InputOf(role);
  TriggerItem present = detectResult;
  if (input.axis) {
    present = profile.*input.axis;
  } else {
    // Kept: the kind is that of the detection before. If nothing happens, this one ends as that one
    // did. Test: WithoutAnyChangeAButtonFollowsTheKindOfTheDetectionBefore.
    present.index = profile.*input.button;
  }
  detectResult = present;
  detectedRole = role;
}

// Runs in the mouse button step, with mouseLock held.
void ControlEngine::DetectMouseInput() {
  if (CountButtons(snapshot.dispatchButtons) >= 2) {
    // The result is still that of the change before: the first of the two buttons.
    EndMouseDetection();
    host.SaveAfterMouseDetection();
  }
  const MouseRole role = detectedRole;
  if (role == MouseRole::None) return;

  ByteString text;
  TriggerItem found = kNoInput;
  if (InputOf(role).axis) {
    if (DetectMouseAxis(device.axisMax, snapshot.state, &found)) InputText(found, &text, false);
  } else if (snapshot.dispatchButtons != 0) {
    found.kind = input_kind::kButton;
    found.index = static_cast<std::uint16_t>(std::countr_zero(snapshot.dispatchButtons));
    ButtonsText(snapshot.dispatchButtons, &text);
  }
  detectResult = found;
  if (text.IsEmpty()) text = "<none>";
  host.ShowDetectedInput(role, text);
}

void ControlEngine::EndMouseDetection() {
  if (!IsDetecting()) return;
  MouseRole role;
  {
    LockGuard guard(profile.profileLock);
    role = detectedRole;
    // The other thread may have ended it while this one waited.
    if (role == MouseRole::None) return;

    const MouseRoleInput& input = InputOf(role);
    const TriggerItem result = detectResult;
    if (input.axis) {
      profile.*input.axis = result;
    } else {
      const bool cleared = result.kind == input_kind::kNone;
      profile.*input.button = cleared ? std::uint16_t{0} : result.index;
      profile.*input.mask = cleared ? 0 : MouseButtonMask(result.index);
    }
    detectedRole = MouseRole::None;
  }
  MouseChanged();
  host.MouseDetectionEnded(role);
}

}  // namespace kelvaro
