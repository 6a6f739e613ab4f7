#include <fstream>
#include <string>

#include "app/platform/linux/program_file.h"
#include "console/linux/front_source.h"

namespace kelvaro::console {

std::string ProgramNameOf(std::uint32_t process) {
  if (process == 0) return {};
  const std::string number = std::to_string(process);
  const std::string path = platform::ProgramFileOf(number);
  std::string name = path.substr(path.rfind('/') + 1);
  if (!name.empty() && !name.starts_with("wine")) return name;
  // What it was called as: all that is told of other users' programs, and with Wine the game.
  std::string called;
  std::getline(std::ifstream("/proc/" + number + "/cmdline", std::ios::binary), called, '\0');
  called.erase(0, called.find_last_of("/\\") + 1);
  return called.empty() ? name : called;
}

}  // namespace kelvaro::console
