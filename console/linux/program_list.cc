#include "console/program_list.h"

#include <algorithm>
#include <fstream>

#include "console/terminal_text.h"

namespace kelvaro::console {

std::string ProgramsText(const std::vector<platform::OtherProgram>& programs) {
  std::string list;
  for (const platform::OtherProgram& program : programs) {
    if (!list.empty()) list += ", ";
    list += TerminalText(program.name) + " (" + std::to_string(program.process) + ")";
  }
  return list;
}

bool HasKelvaro(const std::vector<platform::OtherProgram>& programs) {
  std::ifstream file("/proc/self/comm");
  std::string own;
  std::getline(file, own);
  return std::any_of(programs.begin(), programs.end(), [&](const platform::OtherProgram& program) {
    return program.name == "kelvaro" || program.name == "kelvaroctl" || program.name == own;
  });
}

}  // namespace kelvaro::console
