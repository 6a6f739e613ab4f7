#include "console/console_error.h"

namespace kelvaro::console {
namespace {

// Names out of a file may hold line feeds and other bytes that a terminal obeys.
std::string OneLine(std::string text) {
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) c = '?';
  }
  return text;
}

}  // namespace

int Complain(std::ostream& err, const std::string& message, const std::string& detail) {
  err << "kelvaroctl: " << OneLine(message) << '\n' << detail << std::flush;
  return kBad;
}

}  // namespace kelvaro::console
