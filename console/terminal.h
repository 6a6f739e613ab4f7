// What the terminal can show that the output goes to.
#pragma once

#include <cstddef>

namespace kelvaro::console {

struct Terminal {
  std::size_t columns = 80;
  bool colours = false;
};

// Of the terminal on a descriptor; what isn't one has 80 columns and no colours. Nor has one where
// the environment says so: NO_COLOR with any text, or TERM=dumb.
Terminal TerminalOn(int descriptor);

}  // namespace kelvaro::console
