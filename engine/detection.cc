#include "engine/detection.h"

#include <bit>

#include "engine/control_engine.h"
#include "engine/input_text.h"

namespace kelvaro {
namespace {

constexpr std::uint16_t kBanks = 4;
constexpr std::uint16_t kHats = 4;
constexpr std::uint32_t kHatCentred = 0xFFFF;

constexpr TriggerItem kNothing{input_kind::kNone, 0, 0};

bool IsSideways(std::uint32_t angle) {
  return (angle >= 7000 && angle <= 11000) || (angle >= 25000 && angle <= 29000);
}

TriggerItem MouseInput(std::uint16_t kind, std::uint16_t index) {
  TriggerItem item{kind, index, 0};
  AxisFieldOffset(&item);
  return item;
}

}  // namespace

bool DetectMouseAxis(std::int32_t axisMax, const DIJOYSTATE2& state, TriggerItem* result) {
  const std::int64_t threshold = AxisThreshold(axisMax);
  std::int64_t best = threshold;
  for (std::uint16_t bank = 0; bank < kBanks; ++bank) {
    for (std::uint16_t kind = input_kind::kAxisX; kind <= input_kind::kSliderB; ++kind) {
      const std::int64_t value = AxisValue(state, kind, bank);
      const std::int64_t distance = value < 0 ? -value : value;
      if (distance <= best) continue;
      best = distance;
      *result = MouseInput(kind, bank);
    }
  }
  if (best == axisMax) return true;

  for (std::uint16_t hat = 0; hat < kHats; ++hat) {
    const std::uint32_t angle = state.rgdwPOV[hat] & 0xFFFF;
    if (angle == kHatCentred) continue;
    *result = MouseInput(IsSideways(angle) ? input_kind::kPov : input_kind::kPovVertical, hat);
    return true;
  }
  return best > threshold;
}

// Runs in the mouse button step, with mouseLock held.
void ControlEngine::DetectMouseInput() {
  if (CountButtons(snapshot.dispatchButtons) >= 2) {
    // The result is still that of the change before: the first of the two buttons.
    EndMouseDetection();
    host.SaveDeviceSettings();
    LockGuard guard(profile.profileLock);
    host.SaveProfile();
  }
  if (detectCount == 0) return;

  ByteString text;
  TriggerItem found = kNothing;
  if (detectAxis) {
    if (DetectMouseAxis(device.axisMax, snapshot.state, &found)) InputText(found, &text, false);
  } else if (snapshot.dispatchButtons != 0) {
    found = detectResult;
    found.kind = input_kind::kButton;
    found.index = static_cast<std::uint16_t>(std::countr_zero(snapshot.dispatchButtons));
    ButtonsText(snapshot.dispatchButtons, &text);
  }
  detectResult = found;
  if (text.IsEmpty()) text = "<none>";
  host.ShowDetectedInput(detectTargetId, text);
}

void ControlEngine::EndMouseDetection() {
  if (detectCount == 0) return;
  std::uint32_t target = 0;
  {
    LockGuard guard(profile.profileLock);
    // The other thread may have ended it while this one waited.
    if (detectCount == 0) return;

    target = detectTargetId;
    const TriggerItem result = detectResult;
    const bool cleared = result.kind == input_kind::kNone;
    const std::uint16_t index = cleared ? 0 : result.index;
    const std::uint64_t mask = cleared ? 0 : MouseButtonMask(index);
    switch (target) {
      case kMouseXField:
        profile.mouseX = result;
        break;
      case kMouseYField:
        profile.mouseY = result;
        break;
      case kMouseWheelField:
        profile.mouseWheel = result;
        break;
      case kLeftButtonField:
        profile.leftButton = index;
        profile.leftMask = mask;
        break;
      case kMiddleButtonField:
        profile.middleButton = index;
        profile.middleMask = mask;
        break;
      case kRightButtonField:
        profile.rightButton = index;
        profile.rightMask = mask;
        break;
      default:
        break;
    }
    --detectCount;
  }
  host.MouseDetectionEnded(target);
}

}  // namespace kelvaro
