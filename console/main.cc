#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "app/platform/linux/standard_streams.h"
#include "console/kelvaroctl.h"

int main(int argc, char** argv) {
  platform::OpenStandardStreams();
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvaro::console::RunKelvaroctl(
      words, {std::cout, std::cerr, kelvaro::console::TerminalOn(STDOUT_FILENO)});
}
