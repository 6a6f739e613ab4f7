#include "app/platform/linux/home_folders.h"

#include <errno.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "app/platform/linux/environment.h"

namespace platform {
namespace {

std::string FolderOf(const char* variable, const char* inHome) {
  // The rules want anything but a full path to be ignored.
  std::string chosen = Variable(variable);
  if (chosen.starts_with('/')) return chosen;
  std::string home = Variable("HOME");
  if (home.empty()) {
    const passwd* const person = getpwuid(getuid());
    if (person && person->pw_dir) home = person->pw_dir;
  }
  return home.starts_with('/') ? home + inHome : std::string();
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
