// Keys as a person presses them, for the window that has the keyboard.
#pragma once

#include <string>

#include "app/platform/windows/ui/text.h"

// Last.
#include "app/platform/windows/win32.h"

namespace kelvaro::tests {

// KEYEVENTF_KEYUP lets go of it.
inline void SendKey(std::uint8_t vk, DWORD flags) {
  const bool extended = vk >= VK_PRIOR && vk <= VK_DELETE;
  keybd_event(vk, static_cast<BYTE>(MapVirtualKeyW(vk, MAPVK_VK_TO_VSC)),
              flags | (extended ? KEYEVENTF_EXTENDEDKEY : 0), 0);
}

inline void PressKey(std::uint8_t vk) {
  SendKey(vk, 0);
  SendKey(vk, KEYEVENTF_KEYUP);
}

// As its characters are, whatever keyboard the system takes its own to be.
inline void TypeText(const std::string& text) {
  for (const wchar_t letter : platform::ui::Wide(text)) {
    INPUT keys[2] = {};
    for (INPUT& input : keys) {
      input.type = INPUT_KEYBOARD;
      input.ki.wScan = static_cast<WORD>(letter);
      input.ki.dwFlags = KEYEVENTF_UNICODE;
    }
    keys[1].ki.dwFlags |= KEYEVENTF_KEYUP;
    SendInput(2, keys, sizeof keys[0]);
  }
}

}  // namespace kelvaro::tests
