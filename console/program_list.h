// Other programs that use a device, in words.
#pragma once

#include <string>
#include <vector>

#include "app/platform/linux/device_use.h"

namespace kelvaro::console {

// "evtest (812), game (4711)", with their processes; empty for none.
std::string ProgramsText(const std::vector<platform::OtherProgram>& programs);

// Whether one of them is Kelvaro, by its name: that of one of our programs, or this one's own.
bool HasKelvaro(const std::vector<platform::OtherProgram>& programs);

}  // namespace kelvaro::console
