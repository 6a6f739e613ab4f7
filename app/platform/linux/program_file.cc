#include "app/platform/linux/program_file.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "app/platform/byte_text.h"

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

std::vector<std::uint32_t> ProcessesIn(const std::string& folder, std::string_view suffix) {
  std::vector<std::uint32_t> processes;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    if (!name.ends_with(suffix)) continue;
    const auto number =
        ParseWholeNumber(std::string_view(name).substr(0, name.size() - suffix.size()));
    if (number && *number <= UINT32_MAX) processes.push_back(static_cast<std::uint32_t>(*number));
  }
  std::sort(processes.begin(), processes.end());
  return processes;
}

}  // namespace platform
