#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "console/kelvaroctl.h"

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvaro::console::RunKelvaroctl(
      words, {std::cout, std::cerr, kelvaro::console::TerminalOn(STDOUT_FILENO)});
}
