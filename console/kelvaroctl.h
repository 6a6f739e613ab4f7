// The command line of kelvaroctl: which command, with which options.
#pragma once

#include <string>
#include <vector>

#include "console/commands.h"

namespace kelvaro::console {

// Runs what the words (without the program's own name) ask for, and gives the exit status.
int RunKelvaroctl(const std::vector<std::string>& words, Streams streams);

}  // namespace kelvaro::console
