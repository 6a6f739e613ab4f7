// The command line of kelvaroctl: which command, with which options.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "console/commands.h"

namespace CLI {
class App;
}

namespace kelvaro::console {

// Runs what the words (without the program's own name) ask for, and gives the exit status.
int RunKelvaroctl(const std::vector<std::string>& words, Streams streams);

// Hands over all commands and options, which are gone when `look` has returned.
void DescribeKelvaroctl(const std::function<void(const CLI::App&)>& look);

}  // namespace kelvaro::console
