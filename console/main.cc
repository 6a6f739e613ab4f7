#include <unistd.h>
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

#include <iostream>
#include <string>
#include <vector>

#include "console/kelvaroctl.h"
#ifndef _WIN32
#include "app/platform/linux/standard_streams.h"
#endif

int main(int argc, char** argv) {
#ifdef _WIN32
  // The same bytes in files and pipes as elsewhere.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) _setmode(stream, _O_BINARY);
#else
  platform::OpenStandardStreams();
#endif
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvaro::console::RunKelvaroctl(
      words, {std::cout, std::cerr, kelvaro::console::TerminalOn(STDOUT_FILENO)});
}
