// The three streams that a program is given.
#pragma once

namespace platform {

// Puts /dev/null where descriptor 0, 1 or 2 is closed. What is opened next would get that number,
// and what is printed would go there: into a profile, or to the display. First thing in a program.
void OpenStandardStreams();

}  // namespace platform
