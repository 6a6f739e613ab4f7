// Files and folders of Windows, with both separators and paths of any length. A folder's own
// read-only attribute means nothing to the system and is left out; a folder is read-only where this
// program may not make anything. The system's sharing goes one step further than the seam's: a file
// that one writes alone is shut to others that would write, even to those that share. Any thread.
#pragma once

#include <memory>
#include <string>

#include "app/platform/files.h"

namespace platform {

class WindowsFiles final : public Files {
 public:
  char PathSeparator() override { return '\\'; }

  // What was written is flushed to the disk by CloseHandle.
  std::unique_ptr<File> CreateFileA(const std::string& path, std::uint32_t access,
                                    std::uint32_t share, std::uint32_t disposition) override;

  // Writes a file of its own beside the target ("kel" and a number, ".tmp"), flushes it and puts it
  // in the target's place. The power going leaves that file behind at worst.
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override;
  bool DeleteFileA(const std::string& path) override;

  std::uint32_t GetFileAttributesA(const std::string& path) override;
  bool SetFileAttributesA(const std::string& path, std::uint32_t attributes) override;
  bool CreateDirectoryA(const std::string& path) override;

  // The seam's patterns: the system's own would find short names too, and take "*.*" for "*".
  std::unique_ptr<FileSearch> FindFirstFileA(const std::string& pattern, FindData* data) override;

  std::string GetCurrentDirectoryA() override;
  bool SetCurrentDirectoryA(const std::string& path) override;
  std::string GetModuleFileNameA() override;
  std::uint32_t GetLogicalDrives() override;
  std::uint32_t GetLastError() override;
};

}  // namespace platform
