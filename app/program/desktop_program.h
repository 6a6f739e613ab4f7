// The program on a person's desktop: Linux and Qt behind the seam, and the window above it.
#pragma once

namespace kelvaro {

// The exit status. Arguments that Qt knows are taken out of the array.
int RunOnDesktop(int& argc, char** argv);

}  // namespace kelvaro
