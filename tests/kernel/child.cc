#include "tests/kernel/child.h"

#include <filesystem>
#include <sstream>

#include "tests/host/files.h"

namespace kelvaro::kernel {
namespace {

std::string NewPath() {
  static int count = 0;
  static const tests::TemporaryFolder folder("/dev/shm");
  std::filesystem::permissions(folder.folder, std::filesystem::perms(0755));
  return folder.In(std::to_string(++count));
}

}  // namespace

std::string KelvaroctlPath() {
  // A copy in memory: another user can reach it wherever the work tree lies, and no page of it has
  // to be fetched from the host while a test measures time.
  static const std::string path = [] {
    const std::string copy = NewPath();
    std::filesystem::copy_file(KELVAROCTL, copy);
    std::filesystem::permissions(copy, std::filesystem::perms(0755));
    return copy;
  }();
  return path;
}

Finished RunToEnd(const std::vector<std::string>& arguments, const ChildOptions& options) {
  Child child(arguments, options);
  const int status = child.WaitForEnd();
  return {status, child.Out(), child.Err()};
}

std::string WriteFile(const std::string& content) { return tests::Put(NewPath(), content); }

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kelvaro::kernel
