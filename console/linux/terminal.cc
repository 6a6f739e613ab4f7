#include "console/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include "app/platform/linux/environment.h"

namespace kelvaro::console {

Terminal TerminalOn(int descriptor) {
  Terminal terminal;
  if (isatty(descriptor) == 0) return terminal;
  winsize size{};
  // A terminal that doesn't tell, such as a serial line, says 0.
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) terminal.columns = size.ws_col;
  terminal.colours = platform::Variable("NO_COLOR").empty() && platform::Variable("TERM") != "dumb";
  return terminal;
}

}  // namespace kelvaro::console
