// Files and folders of Linux. The read-only attribute is the owner's write permission, for root
// too, whom the system would let through; a folder is read-only, too, where this program may not
// write, for whatever reason. GetLastError gives errno values. Any thread.
#pragma once

#include <memory>
#include <string>

#include "app/platform/files.h"

namespace platform {

class LinuxFiles final : public Files {
 public:
  char PathSeparator() override { return '/'; }

  // Who is shut out gets EBUSY. What was written is flushed to the disk by CloseHandle, with the
  // folder that knows the file's name.
  std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                    std::uint32_t share, std::uint32_t disposition) override;

  // Writes a file of its own beside the target (".kelvaro-" and 6 more characters), flushes it and
  // puts it in the target's place, with the target's permissions, and its owner where that is
  // allowed. A target that is a link stays one. The power going leaves that file behind at worst.
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override;
  bool DeleteFileA(const std::string& path) override;

  std::uint32_t GetFileAttributesA(const std::string& path) override;
  bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) override;
  bool CreateDirectoryA(const std::string& path) override;

  // A link that leads nowhere is found as a file.
  std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern, FindData* data) override;

  std::string GetCurrentDirectoryA() override;
  bool SetCurrentDirectoryA(const std::string& path) override;
  // As the program was found when it started, even where its file was replaced since then.
  std::string GetModuleFileNameA() override;
  std::uint32_t GetLogicalDrives() override { return 0; }
  std::uint32_t GetLastError() override;
};

}  // namespace platform
