#include "app/platform/linux/keyboard_layout.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>

#include "app/platform/byte_text.h"
#include "app/platform/linux/key_map.h"

namespace platform {
namespace {

constexpr unsigned kKeycodeOffset = 8;

// Symbols of this range are characters, by their numbers.
constexpr KeySym kCharacters = 0x01000000;

std::string TextOf(KeySym symbol) {
  if (symbol == NoSymbol) return {};
  // Those of Latin 1 are their characters.
  if ((symbol >= 0x20 && symbol <= 0x7E) || (symbol >= 0xA0 && symbol <= 0xFF)) {
    return Utf8Of(static_cast<std::uint32_t>(symbol));
  }
  if (symbol > kCharacters && symbol <= kCharacters + 0x10FFFF) {
    return Utf8Of(static_cast<std::uint32_t>(symbol - kCharacters));
  }
  const char* const name = XKeysymToString(symbol);
  return name ? name : "";
}

}  // namespace

std::unique_ptr<KeyboardLayout> KeyboardLayout::Open(const std::string& display) {
  Display* const opened = XOpenDisplay(display.empty() ? nullptr : display.c_str());
  if (!opened) return nullptr;
  int opcode = 0;
  int event = 0;
  int error = 0;
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  XkbStateRec state{};
  if (!XkbQueryExtension(opened, &opcode, &event, &error, &major, &minor) ||
      XkbGetState(opened, XkbUseCoreKbd, &state) != Success) {
    XCloseDisplay(opened);
    return nullptr;
  }
  return std::unique_ptr<KeyboardLayout>(new KeyboardLayout(opened, state.group));
}

KeyboardLayout::~KeyboardLayout() { XCloseDisplay(display); }

std::string KeyboardLayout::Types(std::uint16_t code, bool shift) const {
  if (code == 0 || !IsInX(code)) return {};
  const auto keycode = static_cast<KeyCode>(code + kKeycodeOffset);
  const int level = shift ? 1 : 0;
  KeySym symbol = XkbKeycodeToKeysym(display, keycode, group, level);
  // A key that is the same in all groups has one of them only.
  if (symbol == NoSymbol) symbol = XkbKeycodeToKeysym(display, keycode, 0, level);
  return TextOf(symbol);
}

}  // namespace platform
