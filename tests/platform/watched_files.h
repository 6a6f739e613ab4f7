// The files of a platform, with a watcher that looks on at each file that is opened, copied or
// deleted.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "tests/platform/forwarded_files.h"

namespace kelvaro {

// The watcher is called before the operation: "read", "write", "copy" (with the target's path) or
// "delete".
class WatchedFiles final : public ForwardedFiles {
 public:
  using Watcher = std::function<void(const std::string& operation, const std::string& path)>;

  // Installs itself, for its life, in the place of the files among these.
  WatchedFiles(const platform::Platform& groups, Watcher watcher)
      : ForwardedFiles(*groups.files), watcher(std::move(watcher)), installed(Replaced(groups)) {}

  std::unique_ptr<platform::File> CreateFileA(const std::string& path, std::uint32_t access,
                                              std::uint32_t share,
                                              std::uint32_t disposition) override {
    watcher(access & platform::GENERIC_WRITE ? "write" : "read", path);
    return ForwardedFiles::CreateFileA(path, access, share, disposition);
  }
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override {
    watcher("copy", to);
    return ForwardedFiles::CopyFileA(from, to, failIfExists);
  }
  bool DeleteFileA(const std::string& path) override {
    watcher("delete", path);
    return ForwardedFiles::DeleteFileA(path);
  }

 private:
  platform::Platform Replaced(platform::Platform groups) {
    groups.files = this;
    return groups;
  }

  const Watcher watcher;
  const platform::InstalledPlatform installed;
};

}  // namespace kelvaro
