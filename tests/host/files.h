// Files, folders and variables of the machine on which the tests run.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace kelvaro::tests {

// A new folder, removed with this object. A test fixture may derive from it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(
      const std::string& parent = std::filesystem::temp_directory_path().string())
      : folder(Make(std::filesystem::canonical(parent))) {}
  ~TemporaryFolder() {
    std::error_code ignored;  // a program that is still ending may hold something
    std::filesystem::remove_all(folder, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string In(const std::string& name) const {
    return folder + static_cast<char>(std::filesystem::path::preferred_separator) + name;
  }

  const std::string folder;

 private:
  static std::string Make(const std::filesystem::path& parent) {
    std::random_device random;
    for (;;) {
      const auto made = parent / ("kelvaro-" + std::to_string(random()));
      if (!std::filesystem::create_directory(made)) continue;
      std::filesystem::permissions(made, std::filesystem::perms::owner_all);
      return made.string();
    }
  }
};

// All bytes of a file; none of one that isn't there.
inline std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Writes a file, with its folder where that isn't there; gives its path.
inline std::string Put(const std::string& path, const std::string& bytes, unsigned mode = 0644) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  std::ofstream(path, std::ios::binary) << bytes;
  std::filesystem::permissions(path, std::filesystem::perms(mode), ignored);
  return path;
}

// The same for a program of the shell's.
inline std::string PutScript(const std::string& path, const std::string& text) {
  return Put(path, "#!/bin/sh\n" + text, 0755);
}

// Changes a variable of the environment, or takes it away for null; it is as before at the end.
class Variable {
 public:
  explicit Variable(const char* name, const char* value = nullptr) : name(name) {
    const char* const old = getenv(name);
    wasSet = old != nullptr;
    if (old) before = old;
    Set(value);
  }
  ~Variable() { Set(wasSet ? before.c_str() : nullptr); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

  void Set(const char* value) const {
#ifdef _WIN32
    _putenv_s(name, value ? value : "");
#else
    if (value) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
#endif
  }

 private:
  const char* const name;
  bool wasSet = false;
  std::string before;
};

}  // namespace kelvaro::tests
