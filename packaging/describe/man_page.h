// Manual pages.
#pragma once

#include <string>

#include "packaging/describe/command_line.h"

namespace kelvaro::describe {

// The page of a program for section 1, in the form that man reads.
std::string ManPage(const Command& program, const std::string& version);

}  // namespace kelvaro::describe
