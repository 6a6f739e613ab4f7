// What the desktop's keyboard layout makes of keys, where an X server tells: that of the session,
// or on Wayland the one for X programs, which has the session's layout.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct _XDisplay;  // NOLINT(bugprone-reserved-identifier): Xlib's own

namespace platform {

class KeyboardLayout {
 public:
  // An empty `display` is the one of the environment. Null where no server answers, or one that
  // knows no layouts.
  static std::unique_ptr<KeyboardLayout> Open(const std::string& display = {});
  ~KeyboardLayout();
  KeyboardLayout(const KeyboardLayout&) = delete;
  KeyboardLayout& operator=(const KeyboardLayout&) = delete;

  // What the key of a kernel code types in the group that is chosen now, alone or with Shift: a
  // character in UTF-8, otherwise the X name of its symbol, such as "dead_acute". Empty for
  // nothing, and for a code that X has no room for.
  std::string Types(std::uint16_t code, bool shift) const;

 private:
  KeyboardLayout(_XDisplay* display, int group) : display(display), group(group) {}

  _XDisplay* const display;
  const int group;
};

}  // namespace platform
