// The keys of other formats, in the key language. Each function gives the text of one key, such as
// "a", "<<" or "<Enter>"; empty for a code that no key has.
#pragma once

#include <cstdint>
#include <string>

namespace kelvaro::console {

// An X11 key code, as an evdev keyboard has it: the kernel's code and 8.
std::string KeyOfX11(std::uint32_t code);
// A value of Qt::Key, such as 0x41 or 0x1000013; with 0x10000000 added, the right one of a pair of
// modifiers, or the key of the number pad.
std::string KeyOfQt(std::uint32_t code);
// A mouse button as X11 numbers them. The wheel (4 to 7) is none.
std::string MouseButtonKey(std::uint32_t button);
// Of a typed character; empty where no key types it.
std::string KeyOfCharacter(char character);

bool IsModifierKey(const std::string& key);
bool IsMouseKey(const std::string& key);

}  // namespace kelvaro::console
