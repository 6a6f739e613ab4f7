#include <cstdint>

#include "app/platform/clock.h"
#include "app/platform/input.h"
#include "keys/key_action.h"

namespace kelvaro {

namespace {

constexpr std::uint8_t kShiftFlags = KeyFlagShift | KeyFlagImpliedShift;
constexpr std::uint8_t kHeldFlags = kShiftFlags | KeyFlagCtrl | KeyFlagAlt;

enum class Edge { Down, Up };

struct ModifierKey {
  std::uint8_t vk;
  std::uint8_t scan;
};

constexpr struct {
  std::uint8_t flags;
  ModifierKey left, right, neither;
} kModifiers[] = {
    {kShiftFlags, {0xA0, 0x2A}, {0xA1, 0x36}, {0x10, 0x2A}},
    {KeyFlagCtrl, {0xA2, 0x1D}, {0xA3, 0x9D}, {0x11, 0x1D}},
    {KeyFlagAlt, {0xA4, 0x38}, {0xA5, 0xB8}, {0x12, 0x38}},
};

struct MouseButton {
  std::uint32_t down;
  std::uint32_t up;
};

constexpr struct {
  MouseButton left, right, neither;
} kMouse = {{platform::MOUSEEVENTF_LEFTDOWN, platform::MOUSEEVENTF_LEFTUP},
            {platform::MOUSEEVENTF_RIGHTDOWN, platform::MOUSEEVENTF_RIGHTUP},
            {platform::MOUSEEVENTF_MIDDLEDOWN, platform::MOUSEEVENTF_MIDDLEUP}};

// Nothing for a key of 0, as a step of modifiers or of a mouse button has it.
void SendKey(std::uint8_t vk, std::uint8_t scan, Edge edge) {
  if (vk == 0) return;
  std::uint32_t flags = 0;
  if (scan & 0x80) flags |= platform::KEYEVENTF_EXTENDEDKEY;
  if (edge == Edge::Up) flags |= platform::KEYEVENTF_KEYUP;
  platform::input().keybd_event(vk, scan, flags, 0);
}

template <typename Sides>
const auto& Side(std::uint8_t flags, const Sides& sides) {
  if (flags & KeyFlagLeft) return sides.left;
  return flags & KeyFlagRight ? sides.right : sides.neither;
}

// One order for both edges, so a release doesn't mirror the press.
void SendModifiers(std::uint8_t flags, Edge edge) {
  for (const auto& modifier : kModifiers) {
    if (!(flags & modifier.flags)) continue;
    const ModifierKey& key = Side(flags, modifier);
    SendKey(key.vk, key.scan, edge);
  }
  if (flags & KeyFlagMouse) {
    const MouseButton& button = Side(flags, kMouse);
    platform::input().mouse_event(edge == Edge::Down ? button.down : button.up, 0, 0, 0, 0);
  }
}

std::uint8_t Without(std::uint8_t flags, std::uint8_t done) {
  return static_cast<std::uint8_t>(flags & ~(done & kHeldFlags));
}

void Wait(std::uint32_t ms) {
  if (ms != 0) platform::clock().Sleep(ms);
}

}  // namespace

void PressModifiers(std::uint8_t flags) { SendModifiers(flags, Edge::Down); }

void ReleaseModifiers(std::uint8_t flags) { SendModifiers(flags, Edge::Up); }

bool KeyAction::Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) {
  const bool holdAll = HoldsAllKeys();
  if (holdAll && repeat == 0) {
    holdTime = 0;
    releasePause = 0;
  }

  KeyStep current;
  // The key first, then its modifiers; Release has it the other way round.
  const auto letGo = [&current] {
    SendKey(current.vk, current.scan, Edge::Up);
    ReleaseModifiers(current.flags);
  };
  bool afterKey = false;
  std::uint8_t heldModifiers = 0;
  for (const KeyStep& step : steps) {
    // Kept: a pause is let go of like a key, so that one of 256 ms or more is followed by a stray
    // release of the key that its high byte names. Test: LongPauseSendsAStrayRelease.
    if (!holdAll) letGo();
    current = step;
    if (current.flags & KeyFlagPause) {
      Wait(current.vk * 256u + current.scan);
      afterKey = false;
      continue;
    }

    // Before each key but the first, so that none follows the last; a pause takes its place.
    if (afterKey) Wait(releasePause);
    afterKey = true;
    if (holdAll) current.flags = Without(current.flags, heldModifiers);
    heldModifiers |= current.flags;
    PressModifiers(current.flags);
    SendKey(current.vk, current.scan, Edge::Down);
    Wait(holdTime);
  }
  if (repeat != 0) letGo();
  return true;
}

bool KeyAction::Release() {
  std::uint8_t released = 0;
  // All that is held, or the last step alone.
  for (const auto* node = HoldsAllKeys() ? steps.head : steps.tail; node; node = node->next) {
    const KeyStep& step = *node->value;
    if (step.flags & KeyFlagPause) continue;
    const std::uint8_t flags = Without(step.flags, released);
    released |= flags;
    ReleaseModifiers(flags);
    SendKey(step.vk, step.scan, Edge::Up);
  }
  return true;
}

}  // namespace kelvaro
