// An open file in memory.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "app/platform/files.h"

namespace platform::simulation {

class MemoryFile : public File {
 public:
  explicit MemoryFile(std::string content = {}) : content(std::move(content)) {}

  bool ReadFile(void* buffer, std::uint32_t wanted, std::uint32_t* read) override;
  bool WriteFile(const void* data, std::uint32_t size, std::uint32_t* written) override;
  bool SetFilePointer(std::int64_t distance, std::uint32_t method, std::int64_t* position) override;
  bool CloseHandle() override;

  std::string content;
  std::size_t position = 0;
  bool failing = false;  // every operation fails from here on
};

}  // namespace platform::simulation
