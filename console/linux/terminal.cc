#include "console/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace kelvaro::console {
namespace {

std::string_view Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

Terminal TerminalOn(int descriptor) {
  Terminal terminal;
  if (isatty(descriptor) == 0) return terminal;
  winsize size{};
  // A terminal that doesn't tell, such as a serial line, says 0.
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) terminal.columns = size.ws_col;
  terminal.colours = Variable("NO_COLOR").empty() && Variable("TERM") != "dumb";
  return terminal;
}

}  // namespace kelvaro::console
