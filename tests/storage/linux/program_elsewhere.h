// Linux's files with the program at a place of one's own, so that the folder of profiles beside it
// is one that a test or benchmark may fill and throw away. Without the flush it shows what the rest
// of a save costs.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "app/platform/linux/linux_platform.h"
#include "app/platform/platform.h"
#include "tests/host/files.h"
#include "tests/platform/forwarded_files.h"

namespace kelvaro {

class UnflushedFile final : public platform::File {
 public:
  explicit UnflushedFile(std::unique_ptr<platform::File> file) : file(std::move(file)) {}
  bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) override {
    return file->ReadFile(buffer, wanted, read);
  }
  bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) override {
    return file->WriteFile(data, size, written);
  }
  bool SetFilePointer(std::int64_t distance, std::uint32_t method,
                      std::int64_t* position) override {
    return file->SetFilePointer(distance, method, position);
  }
  bool CloseHandle() override {
    file.reset();  // closes without a flush
    return true;
  }

 private:
  std::unique_ptr<platform::File> file;
};

class FilesElsewhere final : public ForwardedFiles {
 public:
  FilesElsewhere(platform::Files& files, std::string programPath, bool flush)
      : ForwardedFiles(files), programPath(std::move(programPath)), flush(flush) {}

  std::unique_ptr<platform::File> CreateFileA(const std::string& path, std::uint32_t access,
                                              std::uint32_t share,
                                              std::uint32_t disposition) override {
    auto file = ForwardedFiles::CreateFileA(path, access, share, disposition);
    if (file && !flush) return std::make_unique<UnflushedFile>(std::move(file));
    return file;
  }
  bool CopyFileA(const std::string& from, const std::string& to, bool failIfExists) override {
    if (flush) return ForwardedFiles::CopyFileA(from, to, failIfExists);
    std::error_code error;
    const std::string beside = to + ".copy";
    std::filesystem::copy_file(from, beside, error);
    if (!error) std::filesystem::rename(beside, to, error);
    return !error;
  }
  std::string GetModuleFileNameA() override { return programPath; }

 private:
  const std::string programPath;
  const bool flush;
};

// Installed for its life, with a folder of its own that goes with it.
class ProgramElsewhere {
 public:
  explicit ProgramElsewhere(bool flush = true)
      : files(*machine.Groups().files, temporary.In("kelvaro"), flush), installed(Groups()) {}

  const std::string& Folder() const { return temporary.folder; }
  std::string Profiles() const { return temporary.In("Profiles"); }
  platform::Platform Groups() {
    platform::Platform groups = machine.Groups();
    groups.files = &files;
    return groups;
  }

 private:
  const tests::TemporaryFolder temporary;
  platform::LinuxPlatform machine;
  FilesElsewhere files;
  platform::InstalledPlatform installed;
};

}  // namespace kelvaro
