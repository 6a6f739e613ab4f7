// What a program holds only to be seen.
#pragma once

namespace platform::qt {

// Gives back memory of windows that nobody sees: what is kept for drawing, what was freed, and the
// pages of Qt's code. Such a page comes back by itself once it is needed, from the system's cache.
// User interface's thread.
void ReturnUnusedMemory();

}  // namespace platform::qt
