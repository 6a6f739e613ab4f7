// The files of a platform, with a watcher that looks on at each file that is opened, copied or
// deleted.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "app/platform/platform.h"

namespace kelvaro {

// The watcher is called before the operation: "read", "write", "copy" (with the target's path) or
// "delete".
class WatchedFiles final : public platform::Files {
 public:
  using Watcher = std::function<void(const std::string& operation, const std::string& path)>;

  // Installs itself, for its life, in the place of the files among these.
  WatchedFiles(const platform::Platform& groups, Watcher watcher)
      : files(*groups.files), watcher(std::move(watcher)), installed(Replaced(groups)) {}

  char PathSeparator() override { return files.PathSeparator(); }
  std::unique_ptr<platform::File> CreateFileA(const std::string& path, std::uint32_t access,
                                              std::uint32_t share,
                                              std::uint32_t disposition) override {
    watcher(access & platform::GENERIC_WRITE ? "write" : "read", path);
    return files.CreateFileA(path, access, share, disposition);
  }
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override {
    watcher("copy", to);
    return files.CopyFileA(from, to, failIfExists);
  }
  bool DeleteFileA(const std::string& path) override {
    watcher("delete", path);
    return files.DeleteFileA(path);
  }
  std::uint32_t GetFileAttributesA(const std::string& path) override {
    return files.GetFileAttributesA(path);
  }
  bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) override {
    return files.SetFileAttributesA(path, attributes);
  }
  bool CreateDirectoryA(const std::string& path) override { return files.CreateDirectoryA(path); }
  std::unique_ptr<platform::FileSearch> FindFirstFileA(const std::string& pattern,
                                                       platform::FindData* data) override {
    return files.FindFirstFileA(pattern, data);
  }
  std::string GetCurrentDirectoryA() override { return files.GetCurrentDirectoryA(); }
  bool SetCurrentDirectoryA(const std::string& path) override {
    return files.SetCurrentDirectoryA(path);
  }
  std::string GetModuleFileNameA() override { return files.GetModuleFileNameA(); }
  std::uint32_t GetLogicalDrives() override { return files.GetLogicalDrives(); }
  std::uint32_t GetLastError() override { return files.GetLastError(); }

 private:
  platform::Platform Replaced(platform::Platform groups) {
    groups.files = this;
    return groups;
  }

  platform::Files& files;
  const Watcher watcher;
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro
