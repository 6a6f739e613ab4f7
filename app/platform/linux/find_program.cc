#include "app/platform/linux/find_program.h"

#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>

namespace platform {
namespace {

std::string Absolute(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path whole = std::filesystem::absolute(path, failed);
  return failed ? path : whole.string();
}

// 0 for a program that can be run.
int ErrorOfRunning(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0 ? 0 : EACCES;
}

}  // namespace

std::string FindProgram(const std::string& name, int* error) {
  *error = ENOENT;
  if (name.empty()) return {};
  if (name.find('/') != std::string::npos) {
    *error = ErrorOfRunning(name);
    return *error == 0 ? Absolute(name) : std::string();
  }
  const char* const path = getenv("PATH");
  std::string_view folders = path ? path : "/usr/local/bin:/usr/bin:/bin";
  for (;;) {
    const std::size_t end = folders.find(':');
    std::string file(folders.substr(0, end));
    file += (file.empty() ? "./" : "/") + name;
    const int found = ErrorOfRunning(file);
    if (found == 0) {
      *error = 0;
      return Absolute(file);
    }
    if (found == EACCES) *error = EACCES;
    if (end == std::string_view::npos) return {};
    folders.remove_prefix(end + 1);
  }
}

}  // namespace platform
