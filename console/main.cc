#include <unistd.h>
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include <iostream>
#include <string>
#include <vector>

#include "console/kelvaroctl.h"
#ifdef _WIN32
#include "console/console_error.h"
#include "console/real_machine.h"
#include "foundation/paths.h"

namespace {
std::string Refusal() {
  const kelvaro::console::RealMachine machine;
  return kelvaro::ProgramPathRefusal();
}
}  // namespace
#else
#include "app/platform/linux/standard_streams.h"
#endif

int main(int argc, char** argv) {
#ifdef _WIN32
  // The same bytes in files and pipes as elsewhere.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) _setmode(stream, _O_BINARY);
  if (const std::string refusal = Refusal(); !refusal.empty())
    return kelvaro::console::Complain(std::cerr, refusal);
#else
  platform::OpenStandardStreams();
#endif
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvaro::console::RunKelvaroctl(
      words, {std::cout, std::cerr, kelvaro::console::TerminalOn(STDOUT_FILENO)});
}
