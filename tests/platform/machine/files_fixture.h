// A folder of a test on the machine on which the tests run, and the machine's files.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include "app/platform/machine/this_machine.h"
#include "tests/host/files.h"
#include "tests/platform/files_by_hand.h"

namespace platform {

// A temporary folder, which is also the current one.
class FilesTest : public ::testing::Test, protected kelvaro::tests::TemporaryFolder {
 protected:
  FilesTest() { std::filesystem::current_path(folder); }
  ~FilesTest() override { std::filesystem::current_path(before); }

  void Put(const std::string& name, const std::string& bytes, unsigned mode = 0644) const {
    kelvaro::tests::Put(In(name), bytes, mode);
  }
  std::string Bytes(const std::string& name) const { return kelvaro::tests::Content(In(name)); }

  // In the order of the file system, hidden ones included.
  Names Listed() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      names.push_back(entry.path().filename().string());
    return names;
  }
  static Names Sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
  }
  Names List() const { return Sorted(Listed()); }
  Names Found(const std::string& pattern) { return Sorted(platform::Found(files, pattern)); }

  std::unique_ptr<File> OpenToRead(const std::string& path) {
    return platform::OpenToRead(files, path);
  }
  std::unique_ptr<File> Create(const std::string& path) { return platform::Create(files, path); }
  bool Copy(const std::string& from, const std::string& to) {
    return files.CopyFileA(In(from), In(to), false);
  }
  int Error() { return static_cast<int>(files.GetLastError()); }

  ThisFiles files;
  const std::filesystem::path before = std::filesystem::current_path();
};

}  // namespace platform
