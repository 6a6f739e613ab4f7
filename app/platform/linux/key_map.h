// From the keys of the seam to the kernel's key codes, for a United States keyboard. A scan code in
// DIK numbering decides where there is one; a key without scan code goes by its virtual-key code.
// The layout that the desktop has set works on what comes out, as it does on a real keyboard.
#pragma once

#include <cstdint>
#include <vector>

namespace platform {

// A KEY_ code, BTN_SIDE or BTN_EXTRA for the virtual keys 5 and 6 (which belong to a mouse), or 0
// when the kernel has no such key. A scan code that is in no table gives 0 whatever `vk` is: such a
// pair is the stray release behind a long pause, not a key. No allocation.
std::uint16_t KernelKeyCode(std::uint8_t vk, std::uint8_t scan);

// Whether what the key types depends on Num Lock.
bool DependsOnNumLock(std::uint16_t code);

// Whether XTest can send it: the X protocol has room for the kernel's codes up to 247.
bool IsInX(std::uint16_t code);

// Every keyboard code that KernelKeyCode can give, in rising order: what a keyboard has to
// announce.
std::vector<std::uint16_t> KernelKeyboardCodes();

}  // namespace platform
