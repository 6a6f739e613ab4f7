// The file of the program that a process runs.
#pragma once

#include <string>

namespace platform {

// Full path of it, where the system tells it, else empty; where it was for one that was deleted or
// replaced meanwhile. `process` is a number, or "self".
std::string ProgramFileOf(const std::string& process);

}  // namespace platform
