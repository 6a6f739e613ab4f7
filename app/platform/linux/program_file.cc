#include "app/platform/linux/program_file.h"

#include <unistd.h>

#include <string_view>

namespace platform {

std::string ProgramFileOf(const std::string& process) {
  constexpr std::string_view kDeleted = " (deleted)";
  char text[4096];
  const ssize_t size = readlink(("/proc/" + process + "/exe").c_str(), text, sizeof text);
  if (size <= 0) return {};
  std::string path(text, static_cast<std::size_t>(size));
  if (path.ends_with(kDeleted) && access(path.c_str(), F_OK) != 0)
    path.resize(path.size() - kDeleted.size());
  return path;
}

}  // namespace platform
