#include <iostream>
#include <string>
#include <vector>

#include "console/command_line.h"

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  return kelvaro::console::RunCommandLine(words, {std::cout, std::cerr});
}
