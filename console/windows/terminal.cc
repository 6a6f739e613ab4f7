#include "console/terminal.h"

namespace kelvaro::console {

// An old console shows the marks of colours as they are, and breaks lines by itself.
Terminal TerminalOn(int) { return {}; }

}  // namespace kelvaro::console
