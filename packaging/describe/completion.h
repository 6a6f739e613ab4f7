// What bash, zsh and fish load to complete a program's words. Stored profiles, pads and settings
// come from kelvaroctl at that moment.
#pragma once

#include <string>

#include "packaging/describe/command_line.h"

namespace kelvaro::describe {

std::string BashCompletion(const Command& program);
std::string ZshCompletion(const Command& program);
std::string FishCompletion(const Command& program);

}  // namespace kelvaro::describe
