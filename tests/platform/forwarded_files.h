// The files of a platform, handed on call by call: a test derives from it and changes what it wants
// to see or to have otherwise.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "app/platform/platform.h"

namespace kelvaro {

class ForwardedFiles : public platform::Files {
 public:
  explicit ForwardedFiles(platform::Files& files) : files(files) {}

  char PathSeparator() override { return files.PathSeparator(); }
  std::unique_ptr<platform::File> CreateFileA(const std::string& path, std::uint32_t access,
                                              std::uint32_t share,
                                              std::uint32_t disposition) override {
    return files.CreateFileA(path, access, share, disposition);
  }
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override {
    return files.CopyFileA(from, to, failIfExists);
  }
  bool DeleteFileA(const std::string& path) override { return files.DeleteFileA(path); }
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
  platform::Files& files;
};

}  // namespace kelvaro
