#include "console/read_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace kelvaro::console {

bool ReadWholeFile(const std::string& path, std::size_t mostMiB, std::string* content,
                   std::string* error) {
  const auto close = [](std::FILE* file) {
    if (file != stdin) std::fclose(file);
  };
  const std::unique_ptr<std::FILE, decltype(close)> file(
      path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
  if (!file) {
    const int reason = errno;
    std::error_code unknown;
    *error = std::strerror(std::filesystem::is_directory(path, unknown) ? EISDIR : reason);
    return false;
  }
  content->clear();
  char block[65536];
  std::size_t read;
  while ((read = std::fread(block, 1, sizeof block, file.get())) > 0) {
    content->append(block, read);
    if (content->size() > mostMiB << 20) {
      *error = "larger than " + std::to_string(mostMiB) + " MiB";
      return false;
    }
  }
  if (std::ferror(file.get())) {
    *error = std::strerror(errno);
    return false;
  }
  return true;
}

}  // namespace kelvaro::console
