// The file that a program's name stands for, as a shell finds it.
#pragma once

#include <string>

namespace platform {

// Full path of a program that can be run: a name with a slash as it is, any other looked up in
// PATH. Empty, with an errno value in *error, when there is none: EACCES for one that can't be run,
// EISDIR for a folder. *error is 0 otherwise.
std::string FindProgram(const std::string& name, int* error);

}  // namespace platform
