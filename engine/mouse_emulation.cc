#include "engine/mouse_emulation.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "app/platform/input.h"
#include "engine/control_engine.h"

namespace kelvaro {
namespace {

bool IsCount(double accumulated) { return accumulated >= 1.0 || accumulated <= -1.0; }

// Toward zero, and never beyond what an event can carry, whatever a device reports.
std::int32_t WholeCounts(double accumulated) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp(accumulated, double{Limits::min()}, double{Limits::max()}));
}

double HatSideways(std::int32_t angle) {
  if (angle >= 4500 && angle <= 13500) return 1.0;
  if (angle >= 22500 && angle <= 31500) return -1.0;
  return 0.0;
}

double HatUpDown(std::int32_t angle) {
  if ((angle >= 0 && angle <= 4500) || angle >= 31500) return -1.0;
  if (angle >= 13500 && angle <= 22500) return 1.0;
  return 0.0;
}

constexpr struct {
  Relaxed<std::uint64_t> MouseSettings::*mask;
  bool ControlEngine::*isDown;
  std::uint32_t down;
  std::uint32_t up;
} kButtons[] = {
    {&MouseSettings::leftMask, &ControlEngine::leftDown, platform::MOUSEEVENTF_LEFTDOWN,
     platform::MOUSEEVENTF_LEFTUP},
    {&MouseSettings::middleMask, &ControlEngine::middleDown, platform::MOUSEEVENTF_MIDDLEDOWN,
     platform::MOUSEEVENTF_MIDDLEUP},
    {&MouseSettings::rightMask, &ControlEngine::rightDown, platform::MOUSEEVENTF_RIGHTDOWN,
     platform::MOUSEEVENTF_RIGHTUP},
};

void SendButtons(std::uint32_t flags) {
  if (flags != 0) platform::input().mouse_event(flags, 0, 0, 0, 0);
}

}  // namespace

MouseCurve MakeMouseCurve(std::int32_t axisMax, std::int32_t deadZone, std::int32_t factor) {
  return {deadZone, static_cast<double>(axisMax - deadZone), std::max(factor * 0.2, 1.0)};
}

std::int32_t MouseDeadZone(std::int32_t position, std::int32_t axisMax) {
  constexpr double kHundredth = 0.01f;
  return static_cast<std::int32_t>(position * kHundredth * axisMax);
}

double NextAccumulated(const TriggerItem& input, const DIJOYSTATE2& state, const MouseCurve& curve,
                       double accumulated) {
  std::int32_t value;
  if (input.kind == input_kind::kNone || input.value > sizeof state - sizeof value) return 0.0;
  std::memcpy(&value, reinterpret_cast<const char*>(&state) + input.value, sizeof value);

  if (input.kind == input_kind::kPov) return HatSideways(value);
  if (input.kind == input_kind::kPovVertical) return HatUpDown(value);

  const double distance = std::fabs(static_cast<double>(value));
  if (distance <= curve.deadZone) return 0.0;
  const double r = (distance - curve.deadZone) / curve.span;
  const double m = r + r * r * curve.gain;
  return accumulated + std::copysign(m, value);
}

void MouseStep(DeviceManager* device, const DIJOYSTATE2* state, void* context) {
  auto& engine = *static_cast<ControlEngine*>(context);
  device->deviceLock.NotNeeded();  // whoever calls this holds it
  if (engine.IsDetecting() || engine.StandsStill() || engine.host.ControlDialogOpen() ||
      !engine.MouseIsOn()) {
    return device->NothingUntilChange();
  }
  // First a look, since the lock may be this thread's own. Then a try, since another thread may be
  // quicker and the poll must not wait for it.
  if (engine.mouseLock.IsTaken() || !engine.mouseLock.TryAcquire()) return;

  const TriggerItem inputX = engine.profile.mouseX;
  const TriggerItem inputY = engine.profile.mouseY;
  const TriggerItem inputWheel = engine.profile.mouseWheel;
  const MouseCurve movement =
      MakeMouseCurve(device->axisMax, engine.movementDeadZone, engine.movementFactor);
  const MouseCurve wheel =
      MakeMouseCurve(device->axisMax, engine.wheelDeadZone, engine.wheelFactor);
  double& x = engine.accumulatedX;
  double& y = engine.accumulatedY;
  double& turn = engine.accumulatedWheel;
  const double before[] = {x, y, turn};
  x = NextAccumulated(inputX, *state, movement, x);
  y = NextAccumulated(inputY, *state, movement, y);
  turn = NextAccumulated(inputWheel, *state, wheel, turn);

  const bool sendX = IsCount(x);
  const bool sendY = IsCount(y);
  const bool sendWheel = IsCount(turn);
  if (sendX || sendY || sendWheel) {
    std::uint32_t flags = platform::MOUSEEVENTF_MOVE;
    if (sendWheel) {
      flags |= platform::MOUSEEVENTF_WHEEL;
      // A shared axis doesn't scroll and move at once.
      if (inputWheel.SameInput(inputY)) {
        y = 0.0;
      } else if (inputWheel.SameInput(inputX)) {
        x = 0.0;
      }
    }
    // Negated: a positive axis scrolls toward the user.
    platform::input().mouse_event(flags, WholeCounts(x), WholeCounts(y), WholeCounts(-turn), 0);
    // All of it is spent: the accumulators carry only what is too little to send.
    if (sendX) x = 0.0;
    if (sendY) y = 0.0;
    if (sendWheel) turn = 0.0;
  } else if (x == before[0] && y == before[1] && turn == before[2]) {
    device->NothingUntilChange();
  }
  engine.mouseLock.Release();
}

void ControlEngine::MouseButtonStep() {
  if (!MouseIsOn() && !IsDetecting()) return;
  LockGuard guard(mouseLock);

  std::uint32_t flags = 0;
  std::uint32_t owned = 0;
  for (const auto& button : kButtons) {
    const std::uint64_t mask = profile.*button.mask;
    const std::uint64_t held = snapshot.dispatchButtons & mask;
    // Compared with the whole state before: a button that was held before the mouse controls went
    // on makes no edge.
    if (held != (snapshot.previousButtons & mask)) {
      this->*button.isDown = held != 0;
      flags |= held != 0 ? button.down : button.up;
    }
    if (held != 0) owned |= static_cast<std::uint32_t>(mask);
  }

  if (IsDetecting()) {
    DetectMouseInput();
    return;
  }
  // A held button goes away, so that no Control sees it. Kept: the mask of index 31 fills the upper
  // half, which isn't touched here, and a button up there makes bit 31 change sides.
  DispatchObserver* const told = observer;
  if (told && (snapshot.dispatchButtons & owned) != 0) {
    told->MouseTakes(snapshot.dispatchButtons & owned);
  }
  snapshot.dispatchButtons ^= owned;
  SendButtons(flags);
}

void ControlEngine::LiftMouseButtons() {
  LockGuard guard(mouseLock);
  std::uint32_t flags = 0;
  for (const auto& button : kButtons) {
    if (this->*button.isDown) flags |= button.up;
    this->*button.isDown = false;
  }
  SendButtons(flags);
}

}  // namespace kelvaro
