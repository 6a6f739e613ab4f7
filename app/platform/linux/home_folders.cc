#include "app/platform/linux/home_folders.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

namespace platform {

std::string ConfigFolder() {
  // The rules want anything but a full path to be ignored.
  const char* config = getenv("XDG_CONFIG_HOME");
  if (config && *config == '/') return config;
  const char* home = getenv("HOME");
  if (!home || !*home) {
    const passwd* person = getpwuid(getuid());
    home = person ? person->pw_dir : nullptr;
  }
  return home && *home == '/' ? std::string(home) + "/.config" : std::string();
}

bool MakeFolders(const std::filesystem::path& folder) {
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return true;
  if (!folder.has_relative_path() || !MakeFolders(folder.parent_path())) return false;
  return mkdir(folder.c_str(), 0700) == 0 || std::filesystem::is_directory(folder, error);
}

}  // namespace platform
