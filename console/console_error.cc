#include "console/console_error.h"

namespace kelvaro::console {

int Complain(std::ostream& err, const std::string& message, const std::string& detail) {
  err << "kelvaroctl: " << message << '\n' << detail << std::flush;
  return kBad;
}

}  // namespace kelvaro::console
