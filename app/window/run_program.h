// The program, from its window's first message to its end.
#pragma once

#include <cstdint>

namespace kelvaro {

// Runs the main window on the installed platform, on the user interface's thread. The exit status:
// 0, or 1 when there could be no window.
std::int32_t RunProgram();

}  // namespace kelvaro
