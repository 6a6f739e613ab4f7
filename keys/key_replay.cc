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

struct Modifier {
  std::uint8_t flags;
  ModifierKey left;
  ModifierKey right;
  ModifierKey neither;
};

constexpr Modifier kModifiers[] = {
    {kShiftFlags, {0xA0, 0x2A}, {0xA1, 0x36}, {0x10, 0x2A}},
    {KeyFlagCtrl, {0xA2, 0x1D}, {0xA3, 0x9D}, {0x11, 0x1D}},
    {KeyFlagAlt, {0xA4, 0x38}, {0xA5, 0xB8}, {0x12, 0x38}},
};

struct MouseButton {
  std::uint32_t down;
  std::uint32_t up;
};

constexpr MouseButton kLeftButton = {platform::MOUSEEVENTF_LEFTDOWN, platform::MOUSEEVENTF_LEFTUP};
constexpr MouseButton kRightButton = {platform::MOUSEEVENTF_RIGHTDOWN,
                                      platform::MOUSEEVENTF_RIGHTUP};
constexpr MouseButton kMiddleButton = {platform::MOUSEEVENTF_MIDDLEDOWN,
                                       platform::MOUSEEVENTF_MIDDLEUP};

void SendKey(std::uint8_t vk, std::uint8_t scan, Edge edge) {
  std::uint32_t flags = 0;
  if (scan & 0x80) flags |= platform::KEYEVENTF_EXTENDEDKEY;
  if (edge == Edge::Up) flags |= platform::KEYEVENTF_KEYUP;
  platform::keybd_event(vk, scan, flags, 0);
}

template <typename T>
const T& Side(std::uint8_t flags, const T& left, const T& right, const T& neither) {
  if (flags & KeyFlagLeft) return left;
  if (flags & KeyFlagRight) return right;
  return neither;
}

// One order for both edges, so that a release is no mirror of the press.
void SendModifiers(std::uint8_t flags, Edge edge) {
  for (const Modifier& modifier : kModifiers) {
    if (!(flags & modifier.flags)) continue;
    const ModifierKey& key = Side(flags, modifier.left, modifier.right, modifier.neither);
    SendKey(key.vk, key.scan, edge);
  }
  if (flags & KeyFlagMouse) {
    const MouseButton& button = Side(flags, kLeftButton, kRightButton, kMiddleButton);
    platform::mouse_event(edge == Edge::Down ? button.down : button.up, 0, 0, 0, 0);
  }
}

// The key first, then its modifiers; Release has it the other way round.
void LetGo(const KeyStep& step) {
  if (step.vk != 0) SendKey(step.vk, step.scan, Edge::Up);
  if (step.flags != 0) ReleaseModifiers(step.flags);
}

std::uint8_t Without(std::uint8_t flags, std::uint8_t done) {
  return static_cast<std::uint8_t>(flags & ~(done & kHeldFlags));
}

}  // namespace

void PressModifiers(std::uint8_t flags) { SendModifiers(flags, Edge::Down); }

void ReleaseModifiers(std::uint8_t flags) { SendModifiers(flags, Edge::Up); }

bool KeyAction::Replay(std::uint8_t repeat, std::uint32_t holdTime, std::uint32_t releasePause) {
  const bool holdAll = (actionFlags & HoldAllKeys) != 0;
  if (holdAll && repeat == 0) {
    holdTime = 0;
    releasePause = 0;
  }

  KeyStep current;
  bool first = true;
  bool afterPause = false;
  std::uint8_t heldModifiers = 0;

  for (const KeyStep& step : steps) {
    // Kept: a pause is let go of like a key, so that one of 256 ms or more is followed by a stray
    // release of the key that its high byte names. Test: LongPauseSendsAStrayRelease.
    if (!holdAll) LetGo(current);
    current = step;

    if (current.flags & KeyFlagPause) {
      const std::uint32_t ms = current.vk * 256u + current.scan;
      if (ms != 0) platform::Sleep(ms);
      afterPause = true;
      first = false;
      continue;
    }

    // Before each key but the first, so that none follows the last; a pause takes its place.
    if (!first && !afterPause && releasePause != 0) platform::Sleep(releasePause);
    if (holdAll) current.flags = Without(current.flags, heldModifiers);
    if (current.flags != 0) {
      PressModifiers(current.flags);
      heldModifiers |= current.flags;
    }
    if (current.vk != 0) SendKey(current.vk, current.scan, Edge::Down);
    if (holdTime != 0) platform::Sleep(holdTime);
    afterPause = false;
    first = false;
  }

  if (repeat != 0) LetGo(current);
  return true;
}

bool KeyAction::Release() {
  if (!(actionFlags & HoldAllKeys)) {
    if (!steps.tail) return true;
    const KeyStep& last = *steps.tail->value;
    if (last.flags & KeyFlagPause) return true;
    if (last.flags != 0) ReleaseModifiers(last.flags);
    if (last.vk != 0) SendKey(last.vk, last.scan, Edge::Up);
    return true;
  }

  std::uint8_t released = 0;
  for (const KeyStep& step : steps) {
    if (step.flags & KeyFlagPause) continue;
    const std::uint8_t flags = Without(step.flags, released);
    if (flags != 0) {
      ReleaseModifiers(flags);
      released |= flags;
    }
    if (step.vk != 0) SendKey(step.vk, step.scan, Edge::Up);
  }
  return true;
}

}  // namespace kelvaro
