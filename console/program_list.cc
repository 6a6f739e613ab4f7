#include "console/program_list.h"

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

}  // namespace kelvaro::console
