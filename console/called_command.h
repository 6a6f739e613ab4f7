// Which command a command line calls, and what in it the library that parses it would tell badly or
// not at all: a command or an option that there isn't, and an option without its value.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kelvaro::console {

struct CalledCommand {
  const CLI::App* command = nullptr;  // as far as the words name one
  std::string path;                   // "kelvaroctl settings"
  std::string fault;                  // in words; empty where there is none
};

CalledCommand FindCommand(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace kelvaro::console
