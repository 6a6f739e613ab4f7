#include "console/write_file.h"

#include <string.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

namespace kelvaro::console {

namespace fs = std::filesystem;

bool WriteWholeFile(const std::string& path, const std::string& text, std::string* error) {
  const auto fail = [error](int errorCode) {
    *error = strerror(errorCode);
    return false;
  };
  std::error_code problem;
  if (fs::exists(path, problem) && !fs::is_regular_file(path, problem)) {
    return fail(fs::is_directory(path, problem) ? EISDIR : EEXIST);
  }
  const std::string beside = path + ".new";
  errno = 0;
  std::ofstream file(beside, std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    const int errorCode = errno != 0 ? errno : EIO;
    fs::remove(beside, problem);
    return fail(errorCode);
  }
  fs::rename(beside, path, problem);
  if (!problem) return true;
  const int errorCode = problem.value();
  fs::remove(beside, problem);
  return fail(errorCode);
}

}  // namespace kelvaro::console
