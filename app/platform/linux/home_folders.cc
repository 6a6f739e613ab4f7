#include "app/platform/linux/home_folders.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

namespace platform {
namespace {

std::string FolderOf(const char* variable, const char* inHome) {
  // The rules want anything but a full path to be ignored.
  const char* chosen = getenv(variable);
  if (chosen && *chosen == '/') return chosen;
  const char* home = getenv("HOME");
  if (!home || !*home) {
    const passwd* person = getpwuid(getuid());
    home = person ? person->pw_dir : nullptr;
  }
  return home && *home == '/' ? std::string(home) + inHome : std::string();
}

}  // namespace

std::string ConfigFolder() { return FolderOf("XDG_CONFIG_HOME", "/.config"); }

std::string DataFolder() { return FolderOf("XDG_DATA_HOME", "/.local/share"); }

bool MakeFolders(const std::filesystem::path& folder) {
  std::error_code error;
  if (std::filesystem::is_directory(folder, error)) return true;
  if (!folder.has_relative_path() || !MakeFolders(folder.parent_path())) return false;
  return mkdir(folder.c_str(), 0700) == 0 || std::filesystem::is_directory(folder, error);
}

}  // namespace platform
